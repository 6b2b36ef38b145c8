#include "cli/JsonWriter.h"

#include "encap/platform/Encoding.h"

#include <algorithm>
#include <charconv>

#include <nlohmann/json.hpp>

namespace encap::cli {
namespace {

bool NeedsEscape(char character)
{
    return static_cast<unsigned char>(character) < 0x20 || character == '"' || character == '\\';
}

} // namespace

void JsonWriter::Key(std::wstring_view name)
{
    BeforeValue();
    AppendText(name);
    m_out += ": ";
    m_isAfterKey = true;
}

void JsonWriter::Text(std::wstring_view text)
{
    BeforeValue();
    AppendText(text);
}

void JsonWriter::Number(int64_t number)
{
    BeforeValue();
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    m_out.append(digits, end);
}

void JsonWriter::Bool(bool value)
{
    BeforeValue();
    m_out += value ? "true" : "false";
}

void JsonWriter::Null()
{
    BeforeValue();
    m_out += "null";
}

void JsonWriter::Member(std::wstring_view name, std::wstring_view text)
{
    Key(name);
    Text(text);
}

void JsonWriter::MemberNumber(std::wstring_view name, int64_t number)
{
    Key(name);
    Number(number);
}

void JsonWriter::MemberBool(std::wstring_view name, bool value)
{
    Key(name);
    Bool(value);
}

void JsonWriter::BreakLine(int indent)
{
    m_indent = indent;
}

void JsonWriter::Begin(char bracket)
{
    BeforeValue();
    m_out += bracket;
    m_hasItems.push_back(false);
}

void JsonWriter::End(char bracket)
{
    m_hasItems.pop_back();
    m_indent = -1;
    m_out += bracket;
}

void JsonWriter::BeforeValue()
{
    if (m_isAfterKey) {
        m_isAfterKey = false;
        return;
    }
    const bool isFirst = m_hasItems.empty() || !m_hasItems.back();
    if (!isFirst) {
        m_out += ',';
    }
    if (m_indent >= 0) {
        m_out.append(1, '\n').append(static_cast<std::size_t>(m_indent), ' ');
    } else if (!isFirst) {
        m_out += ' ';
    }
    m_indent = -1;
    if (!m_hasItems.empty()) {
        m_hasItems.back() = true;
    }
}

// Nearly every text stands as it is; the others are left to the JSON library.
void JsonWriter::AppendText(std::wstring_view text)
{
    m_out += '"';
    const std::size_t start = m_out.size();
    platform::AppendUtf8(m_out, text);
    if (std::any_of(m_out.begin() + static_cast<std::ptrdiff_t>(start), m_out.end(), NeedsEscape)) {
        const nlohmann::json plain = m_out.substr(start);
        m_out.resize(start - 1);
        m_out += plain.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
        return;
    }
    m_out += '"';
}

} // namespace encap::cli
