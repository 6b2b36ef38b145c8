#pragma once

#include <string>
#include <string_view>

namespace encap {

/// The bytes of a document for a file in the named encoding ("" is UTF-8; "UTF-16" is little-endian
/// with a byte order mark). Characters of texts and values that the encoding lacks become character
/// references. False when the encoding is not known or lacks a character of bareText, which holds
/// what cannot be written so: names, comments, processing instructions.
[[nodiscard]] bool EncodeForFile(std::string_view utf8, std::string_view bareText,
                                 const std::string& encoding, std::string& bytes);

} // namespace encap
