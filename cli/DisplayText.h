#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace encap::cli {

/// Appends text as UTF-8 for a terminal and returns how many columns it takes there: two for wide
/// characters, none for combining ones. Control characters, line breaks among them, become their
/// pictures (U+2400 and following), so one text always stays on one line.
std::size_t AppendForDisplay(std::string& out, std::wstring_view text);

} // namespace encap::cli
