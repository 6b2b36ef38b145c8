#include "cli/Csv.h"

#include "encap/platform/Encoding.h"

#include <algorithm>

namespace encap::cli {
namespace {

bool NeedsQuotes(wchar_t character)
{
    return character == L',' || character == L'"' || character == L'\r' || character == L'\n';
}

} // namespace

void AppendCsv(std::string& out, std::wstring_view text)
{
    if (std::none_of(text.begin(), text.end(), NeedsQuotes)) {
        platform::AppendUtf8(out, text);
        return;
    }
    const std::size_t start = out.size();
    platform::AppendUtf8(out, text);
    for (std::size_t quote = out.find('"', start); quote != std::string::npos;
         quote = out.find('"', quote + 2)) {
        out.insert(quote, 1, '"');
    }
    out.insert(start, 1, '"');
    out += '"';
}

} // namespace encap::cli
