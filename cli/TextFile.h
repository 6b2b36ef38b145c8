#pragma once

#include "encap/foundation/Types.h"
#include "encap/xml/XMLParser.h"

#include <string>
#include <string_view>

namespace encap::cli {

class Fingerprint;

/// The text of an XML file, decoded as its byte order mark or its declaration says (UTF-8 without
/// either). Characters that it cannot hold in its encoding, and U+0000, are refused. The bytes are
/// added to the fingerprint unless that is null. Throws FileError.
[[nodiscard]] CString ReadXmlFile(const CString& path, Fingerprint* fingerprint);
/// The document of an XML file, decoded as by ReadXmlFile. Throws FileError also when it does not
/// parse: "not KIND" with the reason.
[[nodiscard]] XMLParser ParseXmlFile(const CString& path, std::wstring_view kind,
                                     Fingerprint* fingerprint);
/// The text of any other file: UTF-8, or UTF-16 with a byte order mark. As ReadXmlFile.
[[nodiscard]] CString ReadTextFile(const CString& path, Fingerprint* fingerprint);

/// Decodes UTF-8 strictly. On a failure the result is false and position that of the first byte
/// that is not part of a character; U+0000 counts as none.
[[nodiscard]] bool DecodeUtf8(std::string_view bytes, CString& text, std::size_t& position);
/// Decodes UTF-16 strictly: pairs must be whole. position as in DecodeUtf8.
[[nodiscard]] bool DecodeUtf16(std::string_view bytes, bool isBigEndian, CString& text,
                               std::size_t& position);

} // namespace encap::cli
