#pragma once

#include "encap/foundation/Types.h"

#include <string_view>

namespace encap {

/// A value as an XPath literal with its quotes: in the preferred ones (" or '), in the other kind
/// when it holds those, as concat() of both kinds when it holds both. Whatever the value holds, the
/// query compares with exactly that text. XPath 1.0, section 3.7, has no other escape.
[[nodiscard]] ENCAP_API CString QueryLiteral(std::wstring_view value,
                                             wchar_t preferredQuote = L'"');

} // namespace encap
