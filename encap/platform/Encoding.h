#pragma once

#include "encap/foundation/Types.h"

#include <string>
#include <string_view>

// Conversions between wide text (UTF-16 or UTF-32 by platform) and bytes that leave the process.
namespace encap::platform {

/// UTF-8 of a wide text. Surrogate pairs join; a lone surrogate or a value past U+10FFFF becomes
/// U+FFFD. ASCII runs take a fast path.
[[nodiscard]] std::string WideToUtf8(std::wstring_view text);
void AppendUtf8(std::string& out, std::wstring_view text);
/// Wide text of UTF-8 bytes; a malformed sequence becomes U+FFFD.
[[nodiscard]] CString Utf8ToWide(std::string_view bytes);
void AssignWide(CString& out, std::string_view utf8);
void AppendWide(CString& out, std::string_view utf8);

/// UTF-16 code units. A lone surrogate passes through both ways; a value past U+10FFFF becomes
/// U+FFFD.
[[nodiscard]] std::u16string WideToUtf16(std::wstring_view text);
[[nodiscard]] CString Utf16ToWide(std::u16string_view units);

} // namespace encap::platform
