#pragma once

#include <string>
#include <string_view>

namespace encap::cli {

/// The end of a line of CSV.
inline constexpr std::string_view kCsvLineEnd = "\r\n";

/// Appends a field of CSV (RFC 4180) as UTF-8: in quotes, with quotes in it doubled, when it holds
/// a quote, a comma or a line break.
void AppendCsv(std::string& out, std::wstring_view text);

} // namespace encap::cli
