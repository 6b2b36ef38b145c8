#include "tests/host/HostCases.h"

#include <thread>
#include <vector>

namespace {

// UDUNITS-2 keeps its parser and its maps in static variables: reading the database and looking up
// units on several threads at once must not mix them up.
TEST(ProviderThreads, ProvidersOfTheirOwnOnSeveralThreads)
{
    const auto work = [](int& wrong) {
        for (int round = 0; round < 3; ++round) {
            CStandaloneEvaluatorProvider provider;
            const struct {
                const wchar_t* expression;
                const wchar_t* unit;
                double value;
            } cases[] = {{L"3mm*2", L"mm", 0.6},
                         {L"1in", L"in", 2.54},
                         {L"2kN/4mm2", L"MPa", 5e6},
                         {L"20degC", L"K", 293.15},
                         {L"1furlongz", L"mm", 0}};
            for (const auto& each : cases) {
                double value = 0.0;
                const int32_t status =
                    provider.EvaluateExpression(each.expression, each.unit, value);
                const bool isRight = each.value == 0.0
                                         ? status < 0
                                         : std::abs(value - each.value) < 1e-9 * each.value;
                wrong += isRight ? 0 : 1;
            }
        }
    };
    std::vector<int> wrong(4, 0);
    std::vector<std::thread> threads;
    threads.reserve(wrong.size());
    for (int& count : wrong) {
        threads.emplace_back(work, std::ref(count));
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, std::vector<int>(4, 0));
}

} // namespace
