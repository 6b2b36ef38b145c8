#include "cli/OrderedWork.h"

#include "tests/cli/CliRun.h"

#include <atomic>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace encap::test {
namespace {

using Work = cli::OrderedWork<std::size_t>;

/// The results until the end.
template <class AnyWork>
std::vector<std::size_t> Drain(AnyWork& work)
{
    std::vector<std::size_t> results;
    std::size_t result = 0;
    for (;;) {
        const auto state = work.Next(result, std::chrono::milliseconds(20));
        if (state == AnyWork::State::Done) {
            return results;
        }
        if (state == AnyWork::State::Ready) {
            results.push_back(result);
        }
    }
}

/// Takes longer for some numbers than for others.
std::size_t Busy(std::size_t number)
{
    std::atomic<std::size_t> sum = 0;
    for (std::size_t i = 0; i < (number % 7) * 20'000; ++i) {
        sum += i;
    }
    return number;
}

TEST(OrderedWork, GivesEveryResultInOrderWithOneMakerAThread)
{
    for (const std::size_t threads : {1U, 2U, 5U}) {
        std::atomic<std::size_t> made = 0;
        Work work(400, threads, [&made]() -> Work::Piece {
            ++made;
            const auto mine = std::make_shared<std::size_t>(0); // raced for if it were shared
            return [mine](std::size_t number) {
                ++*mine;
                return Busy(number);
            };
        });
        const std::vector<std::size_t> results = Drain(work);
        ASSERT_EQ(400U, results.size());
        for (std::size_t i = 0; i < results.size(); ++i) {
            EXPECT_EQ(i, results[i]);
        }
        EXPECT_LE(made, threads);
    }
    Work none(0, 3, [] { return Busy; });
    EXPECT_TRUE(Drain(none).empty());
}

TEST(OrderedWork, RunsNoFurtherAheadThanItHasRoom)
{
    std::atomic<std::size_t> begun = 0;
    std::atomic<bool> mayEnd = false;
    Work work(10'000, 2, [&]() -> Work::Piece {
        return [&](std::size_t number) {
            ++begun;
            while (number == 0 && !mayEnd) {
                std::this_thread::yield();
            }
            return number;
        };
    });
    std::size_t result = 0;
    while (begun < 64) {
        EXPECT_EQ(Work::State::Waiting, work.Next(result, std::chrono::milliseconds(1)));
    }
    for (int i = 0; i < 100; ++i) {
        std::this_thread::yield();
    }
    EXPECT_EQ(64U, begun);
    mayEnd = true;
    EXPECT_EQ(10'000U, Drain(work).size());
}

TEST(OrderedWork, HandsOnWhatIsThrownAndStops)
{
    std::atomic<std::size_t> begun = 0;
    Work work(100'000, 3, [&]() -> Work::Piece {
        return [&](std::size_t number) {
            ++begun;
            return number == 50 ? throw std::runtime_error("fifty") : number;
        };
    });
    EXPECT_THROW(Drain(work), std::runtime_error);
    EXPECT_LT(begun, 1'000U);
    Work unmade(10, 2, []() -> Work::Piece { throw std::runtime_error("no maker"); });
    EXPECT_THROW(Drain(unmade), std::runtime_error);
    // One that nobody waits for.
    const Work left(100'000, 3, [] { return Busy; });
}

/// Of which the system gives two, and then none.
class ScarceThread : public std::jthread {
public:
    template <class Function>
    explicit ScarceThread(Function run)
        : std::jthread(s_given++ < 2 ? std::move(run)
                                     : throw std::system_error(
                                           std::make_error_code(std::errc::not_enough_memory)))
    {
    }

private:
    static inline int s_given = 0;
};

TEST(OrderedWork, DoesWithTheThreadsThatThereAre)
{
    using ScarceWork = cli::OrderedWork<std::size_t, ScarceThread>;
    const auto make = [] { return Busy; };
    ScarceWork work(400, 8, make);
    EXPECT_EQ(400U, Drain(work).size());
    EXPECT_THROW(ScarceWork(400, 8, make), cli::CommandError);
}

TEST(OrderedWork, BatchesOfFamiliesOnSeveralThreads)
{
    const std::string samples = ENCAP_SAMPLES;
    const CliRun run({"batch", samples + "/toc.xml", "--no-times", "--jobs", "4", "--materials",
                      samples + "/materials.csv"});
    EXPECT_EQ(0, run.status) << run.err;
    EXPECT_EQ(21, std::count(run.out.begin(), run.out.end(), '\n'));
    EXPECT_EQ("encap: 21 families, 2953 members, 67975 cells\n", run.err);
    EXPECT_EQ(0, CliRun({"find", samples, "{D} > 8mm", "--jobs", "3"}).status);
}

} // namespace
} // namespace encap::test
