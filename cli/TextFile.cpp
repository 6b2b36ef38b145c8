#include "cli/TextFile.h"

#include "cli/CommandError.h"
#include "cli/Fingerprint.h"
#include "cli/Paths.h"
#include "cli/XmlTags.h"
#include "encap/foundation/CaseFolding.h"
#include "encap/foundation/CodePoints.h"
#include "encap/foundation/NumberText.h"
#include "encap/platform/Encoding.h"
#include "encap/platform/Files.h"

#include <algorithm>
#include <cstring>

namespace encap::cli {
namespace {

enum class Encoding { Utf8, Utf16Little, Utf16Big, Other };

struct Detected {
    Encoding encoding = Encoding::Utf8;
    std::size_t markSize = 0; ///< of the byte order mark
    std::string name;         ///< as declared, else as found
};

using namespace std::string_view_literals;

std::string ReadBytes(const CString& path, Fingerprint* fingerprint)
{
    std::string bytes;
    if (!platform::ReadWholeFile(path, bytes)) {
        if (IsDirectory(path)) {
            throw FileError(path, L"it is a directory, not a file");
        }
        throw FileError(path, platform::FileExists(path) ? L"the file cannot be read"
                                                         : L"there is no such file");
    }
    if (fingerprint != nullptr) {
        fingerprint->Add(bytes);
    }
    return bytes;
}

Detected DetectByMark(std::string_view bytes)
{
    constexpr struct {
        std::string_view mark;
        Encoding encoding;
        const char* name;
    } kMarks[] = {
        {"\xFF\xFE\0\0"sv, Encoding::Other, "UTF-32"},
        {"\0\0\xFE\xFF"sv, Encoding::Other, "UTF-32"},
        {"\xEF\xBB\xBF"sv, Encoding::Utf8, "UTF-8"},
        {"\xFF\xFE"sv, Encoding::Utf16Little, "UTF-16"},
        {"\xFE\xFF"sv, Encoding::Utf16Big, "UTF-16"},
    };
    for (const auto& [mark, encoding, name] : kMarks) {
        if (bytes.starts_with(mark)) {
            return {encoding, mark.size(), name};
        }
    }
    return {};
}

/// The encoding that an XML declaration in ASCII characters names; empty when it names none.
std::string DeclaredEncoding(std::string_view bytes)
{
    if (!bytes.starts_with("<?xml")) {
        return {};
    }
    const std::string_view declaration = bytes.substr(0, bytes.find("?>"));
    const std::size_t name = declaration.find("encoding");
    const std::size_t open = declaration.find_first_of("\"'", name);
    if (name == std::string_view::npos || open == std::string_view::npos) {
        return {};
    }
    const std::size_t close = declaration.find(declaration[open], open + 1);
    return close == std::string_view::npos
               ? std::string()
               : std::string(declaration.substr(open + 1, close - open - 1));
}

Detected Detect(const CString& path, std::string_view bytes)
{
    Detected found = DetectByMark(bytes);
    if (found.markSize != 0) {
        return found;
    }
    if (bytes.starts_with("<\0"sv)) {
        return {Encoding::Utf16Little, 0, "UTF-16"};
    }
    if (bytes.starts_with("\0<"sv)) {
        return {Encoding::Utf16Big, 0, "UTF-16"};
    }
    found.name = DeclaredEncoding(bytes);
    const CString folded = FoldCase(platform::Utf8ToWide(found.name));
    if (folded.starts_with(L"utf-16")) {
        throw FileError(path, L"it declares " + platform::Utf8ToWide(found.name) +
                                  L" but is not written in it");
    }
    const bool isUtf8 = folded.empty() || folded == L"utf-8" || folded == L"us-ascii";
    found.encoding = isUtf8 ? Encoding::Utf8 : Encoding::Other;
    found.name = found.name.empty() ? "UTF-8" : found.name;
    return found;
}

/// The position is that of the first byte that is not part of a character, behind the mark.
[[noreturn]] void ThrowNoCharacter(const CString& path, std::string_view bytes,
                                   const Detected& detected, std::size_t position)
{
    const std::size_t place = position + detected.markSize;
    const auto lines = std::count(bytes.begin(), bytes.begin() + place, '\n');
    throw FileError(path, L"byte " + FormatInteger(static_cast<int64_t>(place) + 1) + L" (line " +
                              FormatInteger(lines + 1) + L") is no " +
                              platform::Utf8ToWide(detected.name) +
                              L" character; save the file in the encoding that it declares");
}

CString Decode(const CString& path, std::string_view bytes, const Detected& detected)
{
    CString text;
    std::size_t position = 0;
    const std::string_view content = bytes.substr(detected.markSize);
    const bool isDecoded =
        detected.encoding == Encoding::Utf8
            ? DecodeUtf8(content, text, position)
            : DecodeUtf16(content, detected.encoding == Encoding::Utf16Big, text, position);
    if (!isDecoded) {
        ThrowNoCharacter(path, bytes, detected, position);
    }
    return text;
}

// Encodings that are rare in families are decoded by the XML layer.
CString LoadThroughParser(const CString& path, const std::string& encoding)
{
    XMLParser document;
    CString text;
    if (!document.LoadXmlDocument(path.c_str()) || !document.GetXml(text)) {
        throw FileError(path, L"it is not well-formed XML in the encoding that it declares (" +
                                  platform::Utf8ToWide(encoding) + L")");
    }
    return text;
}

/// Eight bytes that are ASCII characters other than U+0000.
bool IsPlain(const char* bytes)
{
    constexpr uint64_t kHighBits = 0x8080808080808080;
    constexpr uint64_t kOnes = 0x0101010101010101;
    uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return ((word | (word - kOnes)) & kHighBits) == 0;
}

/// The length of the character at the start of the bytes and the character; 0 when there is none.
std::size_t ReadUtf8(std::string_view bytes, char32_t& character)
{
    const auto first = static_cast<unsigned char>(bytes[0]);
    if (first < 0x80) {
        character = first;
        return first != 0 ? 1 : 0;
    }
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || bytes.size() < length) {
        return 0;
    }
    character = first & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if ((byte & 0xC0) != 0x80) {
            return 0;
        }
        character = (character << 6) | (byte & 0x3FU);
    }
    constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool isValid =
        character >= kLeast[length] && character <= kLastCodePoint && !IsSurrogate(character);
    return isValid ? length : 0;
}

/// The length of the UTF-8 characters that the bytes begin with, without U+0000.
std::size_t Utf8Length(std::string_view bytes)
{
    std::size_t position = 0;
    while (position < bytes.size()) {
        if (bytes.size() - position >= 8 && IsPlain(bytes.data() + position)) {
            position += 8;
            continue;
        }
        char32_t character = 0;
        const std::size_t length = ReadUtf8(bytes.substr(position), character);
        if (length == 0) {
            break;
        }
        position += length;
    }
    return position;
}

CString TextOf(const CString& path, std::string_view bytes, const Detected& detected)
{
    return detected.encoding == Encoding::Other ? LoadThroughParser(path, detected.name)
                                                : Decode(path, bytes, detected);
}

} // namespace

CString ReadXmlFile(const CString& path, Fingerprint* fingerprint)
{
    const std::string bytes = ReadBytes(path, fingerprint);
    return TextOf(path, bytes, Detect(path, bytes));
}

XMLParser ParseXmlFile(const CString& path, std::wstring_view kind, Fingerprint* fingerprint)
{
    const std::string bytes = ReadBytes(path, fingerprint);
    const Detected detected = Detect(path, bytes);
    XMLParser document;
    if (detected.encoding == Encoding::Utf8) {
        const std::string_view content = std::string_view(bytes).substr(detected.markSize);
        if (const std::size_t length = Utf8Length(content); length != content.size()) {
            ThrowNoCharacter(path, bytes, detected, length);
        }
        document.SetXml(content);
    } else {
        document.SetXml(TextOf(path, bytes, detected));
    }
    if (!document.GetRootNode().IsNode()) {
        throw FileError(path, L"not " + CString(kind) + L": " +
                                  ReasonOfRefusal(TextOf(path, bytes, detected)));
    }
    return document;
}

CString ReadTextFile(const CString& path, Fingerprint* fingerprint)
{
    const std::string bytes = ReadBytes(path, fingerprint);
    Detected detected = DetectByMark(bytes);
    if (detected.encoding == Encoding::Other || detected.markSize == 0) {
        detected = {Encoding::Utf8, 0, "UTF-8"};
    }
    return Decode(path, bytes, detected);
}

bool DecodeUtf8(std::string_view bytes, CString& text, std::size_t& position)
{
    position = Utf8Length(bytes);
    platform::AssignWide(text, bytes.substr(0, position));
    return position == bytes.size();
}

bool DecodeUtf16(std::string_view bytes, bool isBigEndian, CString& text, std::size_t& position)
{
    const std::size_t high = isBigEndian ? 0 : 1;
    const auto unitAt = [&](std::size_t place) {
        return static_cast<char32_t>((static_cast<unsigned char>(bytes[place + high]) << 8) |
                                     static_cast<unsigned char>(bytes[place + 1 - high]));
    };
    text.resize(bytes.size() / 2);
    wchar_t* out = text.data();
    for (position = 0; position + 2 <= bytes.size();) {
        char32_t character = unitAt(position);
        std::size_t length = 2;
        if (IsHighSurrogate(character) && position + 4 <= bytes.size() &&
            IsLowSurrogate(unitAt(position + 2))) {
            character = 0x10000 + ((character - 0xD800) << 10) + (unitAt(position + 2) - 0xDC00);
            length = 4;
        }
        if (IsSurrogate(character) || character == 0) {
            return false;
        }
        position += length;
        out = WriteCodePoint(out, character);
    }
    text.resize(static_cast<std::size_t>(out - text.data()));
    return position == bytes.size();
}

} // namespace encap::cli
