#include "encap/xml/Texts.h"

#include "encap/platform/Encoding.h"

#include <algorithm>

#include <libxml/tree.h>

namespace encap {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

/// The bytes of the character at the position when XML does not allow it there, else 0. The text is
/// well-formed UTF-8, so only controls and U+FFFE and U+FFFF are left to find.
std::size_t ForbiddenAt(std::string_view text, std::size_t position)
{
    const auto byte = static_cast<unsigned char>(text[position]);
    if (byte < 0x20) {
        return byte == '\t' || byte == '\n' || byte == '\r' ? 0 : 1;
    }
    const std::string_view character = text.substr(position, 3);
    return character == "\xEF\xBF\xBE" || character == "\xEF\xBF\xBF" ? 3 : 0;
}

bool MayBeForbidden(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0xEF;
}

bool IsAsciiLetter(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

} // namespace

Utf8Text::Utf8Text(std::wstring_view text)
{
    const bool fits = text.size() < m_short.size();
    std::size_t length = 0;
    while (fits && length < text.size() && text[length] > 0 && text[length] < 0x80) {
        m_short[length] = static_cast<char>(text[length]);
        ++length;
    }
    if (fits && length == text.size()) {
        m_short[length] = '\0';
        m_view = std::string_view(m_short.data(), length);
        return;
    }
    platform::AppendUtf8(m_long, text);
    m_view = m_long;
}

std::string DocumentText(std::wstring_view text)
{
    std::string utf8 = platform::WideToUtf8(text);
    if (std::none_of(utf8.begin(), utf8.end(), MayBeForbidden)) {
        return utf8;
    }
    std::string allowed;
    allowed.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const std::size_t forbidden = MayBeForbidden(utf8[i]) ? ForbiddenAt(utf8, i) : 0;
        if (forbidden == 0) {
            allowed += utf8[i];
        } else {
            allowed += kReplacement;
            i += forbidden - 1;
        }
    }
    return allowed;
}

bool IsQualifiedName(std::string_view name)
{
    const std::string terminated(name);
    return terminated.find('\0') == std::string::npos &&
           xmlValidateQName(reinterpret_cast<const xmlChar*>(terminated.c_str()), 0) == 0;
}

bool IsEncodingName(std::string_view name)
{
    return !name.empty() && IsAsciiLetter(name.front()) &&
           std::all_of(name.begin(), name.end(), [](char character) {
               return IsAsciiLetter(character) || (character >= '0' && character <= '9') ||
                      character == '.' || character == '_' || character == '-';
           });
}

bool IsBlank(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char character) {
        return character == ' ' || character == '\n' || character == '\t' || character == '\r';
    });
}

} // namespace encap
