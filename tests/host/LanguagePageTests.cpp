#include "tests/host/HostCases.h"

#include <cstdlib>
#include <fstream>
#include <string>

namespace {

std::string Trimmed(const std::string& text)
{
    const auto first = text.find_first_not_of(' ');
    const auto last = text.find_last_not_of(' ');
    return first == std::string::npos ? std::string() : text.substr(first, last - first + 1);
}

/// One example: "expression | unit asked for | answer", where the answer is a number with its
/// database unit, "no result" or the beginning of the reason.
void RunExample(CStandaloneEvaluatorProvider& provider, const std::string& line)
{
    SCOPED_TRACE(line);
    const auto first = line.find(" | ");
    const auto second = line.find(" | ", first + 1);
    ASSERT_NE(second, std::string::npos);
    const CString expression = encap::platform::Utf8ToWide(Trimmed(line.substr(0, first)));
    const CString unit =
        encap::platform::Utf8ToWide(Trimmed(line.substr(first + 3, second - first - 3)));
    const std::string answer = Trimmed(line.substr(second + 3));
    double value = 0.0;
    const int32_t status = provider.EvaluateExpression(expression.c_str(), unit.c_str(), value);
    if (status < 0) {
        const std::string reason = encap::platform::WideToUtf8(provider.LastError());
        EXPECT_EQ(reason.substr(0, answer.size()), answer);
    } else if (status > 0) {
        EXPECT_EQ(answer, "no result");
    } else {
        char* end = nullptr;
        const double expected = std::strtod(answer.c_str(), &end);
        EXPECT_NEAR(value, expected, std::abs(expected) * 1e-13);
        CString databaseUnit;
        EXPECT_EQ(provider.GetDatabaseUnit(unit.c_str(), databaseUnit), 0);
        EXPECT_EQ(encap::platform::WideToUtf8(databaseUnit), *end == '\0' ? "ul" : Trimmed(end));
    }
}

TEST(LanguagePage, EveryExampleIsTrue)
{
    std::ifstream page(ENCAP_TEST_DATA "/../../docs/host-language.md");
    ASSERT_TRUE(page);
    CStandaloneEvaluatorProvider provider;
    bool isExample = false;
    int examples = 0;
    for (std::string line; std::getline(page, line);) {
        if (line == "```") {
            isExample = !isExample;
        } else if (isExample) {
            RunExample(provider, line);
            ++examples;
        }
    }
    EXPECT_GT(examples, 30);
}

} // namespace
