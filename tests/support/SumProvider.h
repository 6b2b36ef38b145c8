#pragma once

#include "encap/foundation/Types.h"
#include "tests/support/FakeProvider.h"
#include "tests/support/Sanitized.h"

#include <charconv>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>

namespace encap::test {

/// The number at the start of a text, and how many characters it takes.
inline std::pair<double, std::size_t> NumberAt(const CString& text, std::size_t place)
{
    std::string narrow;
    for (std::size_t i = place; i < text.size() && text[i] < 0x80; ++i) {
        narrow += static_cast<char>(text[i]);
    }
    double number = 0.0;
    const bool digit = !narrow.empty() && narrow[0] >= '0' && narrow[0] <= '9';
    const auto read = std::from_chars(narrow.data(), narrow.data() + narrow.size(), number);
    return {number, digit ? static_cast<std::size_t>(read.ptr - narrow.data()) : 0};
}

/// The whole arithmetic of the model and of its host: numbers joined by "+", each bare or followed
/// by "ul". Anything else has no value.
inline std::optional<double> Sum(const CString& text)
{
    double sum = 0.0;
    for (std::size_t place = 0;; ++place) {
        const auto [number, length] = NumberAt(text, place);
        if (length == 0) {
            return std::nullopt;
        }
        sum += number;
        place += length;
        place += text.compare(place, 2, L"ul") == 0 ? 2U : 0U;
        if (place == text.size()) {
            return sum;
        }
        if (text[place] != L'+') {
            return std::nullopt;
        }
    }
}

/// A host that computes what the model computes.
class SumProvider : public FakeProvider {
public:
    int32_t EvaluateExpression(const wchar_t* expression, const wchar_t*, double& value) override
    {
        const auto sum = Sum(expression);
        value = sum.value_or(0.0);
        return sum ? 0 : -1;
    }
};

/// A number as the table writes it.
inline CString NumberText(double number)
{
    char text[32];
    const int length = std::snprintf(text, sizeof text, "%.8g", number);
    return CString(text, text + length);
}

} // namespace encap::test
