#include "encap/foundation/TextFormat.h"

#include "encap/foundation/NumberText.h"

namespace encap {
namespace {

void AppendArgument(CString& out, const FormatArgument& argument, wchar_t conversion)
{
    if (!argument.IsNumber()) {
        out += argument.Text();
    } else if (conversion == L'X') {
        out += FormatHexadecimal(static_cast<uint32_t>(argument.Number()));
    } else {
        out += FormatInteger(argument.Number());
    }
}

} // namespace

CString FormatText(std::wstring_view format, std::initializer_list<FormatArgument> arguments)
{
    CString result;
    auto next = arguments.begin();
    for (std::size_t i = 0; i < format.size(); ++i) {
        const wchar_t conversion = i + 1 < format.size() ? format[i + 1] : L'\0';
        if (format[i] != L'%') {
            result += format[i];
        } else if (conversion == L'%') {
            result += L'%';
            ++i;
        } else if (conversion == L's' || conversion == L'd' || conversion == L'X') {
            if (next != arguments.end()) {
                AppendArgument(result, *next++, conversion);
            }
            ++i;
        } else {
            result += L'%';
        }
    }
    return result;
}

std::wstring_view TrimView(std::wstring_view text)
{
    const auto isVisibleAscii = [](wchar_t character) {
        return character > L' ' && character < L'\x7F';
    };
    if (!text.empty() && isVisibleAscii(text.front()) && isVisibleAscii(text.back())) {
        return text;
    }
    const std::size_t first = text.find_first_not_of(kWhiteSpace);
    if (first == std::wstring_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1);
}

} // namespace encap
