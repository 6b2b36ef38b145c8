#pragma once

#include "encap/xml/Serializer.h"
#include "encap/xml/Tree.h"

#include <string_view>

namespace encap {

/// The nesting of elements that a text may have; deeper texts do not parse.
inline constexpr int kMostParsedLevels = 256;

/// What a text gave: a new tree, none when the text does not parse.
struct ParsedDocument {
    TreeReference tree;
    XmlDeclaration declaration;
};

/// Parses a decoded text, whatever encoding its declaration names; a byte order mark before it is
/// passed over.
[[nodiscard]] ParsedDocument ParseText(std::wstring_view xml);
/// The same for a text in UTF-8.
[[nodiscard]] ParsedDocument ParseUtf8Text(std::string_view xml);
/// Parses the bytes of a file in the encoding that its byte order mark or declaration names.
[[nodiscard]] ParsedDocument ParseFileBytes(std::string_view bytes);

} // namespace encap
