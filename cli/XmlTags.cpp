#include "cli/XmlTags.h"

#include "encap/foundation/NumberText.h"

#include <algorithm>

namespace encap::cli {
namespace {

constexpr std::wstring_view kWhiteSpace = L" \t\r\n";
constexpr int kDeepestLevel = 256;

} // namespace

bool XmlTags::Next()
{
    if (m_end != 0 && m_kind == Tag::DocumentType) {
        return false;
    }
    while (true) {
        m_begin = m_text.find(L'<', m_end);
        if (m_begin == std::wstring_view::npos) {
            return false;
        }
        if (Skip(L"<!--", L"-->") || Skip(L"<![CDATA[", L"]]>") || Skip(L"<?", L"?>")) {
            continue;
        }
        return FindEnd();
    }
}

std::wstring_view XmlTags::Name() const
{
    std::wstring_view name = Whole();
    name.remove_prefix(m_kind == Tag::Closing ? 2 : 1);
    return name.substr(0, name.find_first_of(L" \t\r\n/>"));
}

std::wstring_view XmlTags::Whole() const
{
    return m_text.substr(m_begin, m_end - m_begin);
}

// One that is not ended goes to the end of the text.
bool XmlTags::Skip(std::wstring_view start, std::wstring_view end)
{
    if (!m_text.substr(m_begin).starts_with(start)) {
        return false;
    }
    const std::size_t found = m_text.find(end, m_begin + start.size());
    m_end = found == std::wstring_view::npos ? m_text.size() : found + end.size();
    return true;
}

bool XmlTags::FindEnd()
{
    if (m_text.substr(m_begin).starts_with(L"<!")) {
        m_kind = Tag::DocumentType;
        m_end = m_text.size();
        return true;
    }
    const std::size_t last = EndOfTag();
    if (last == std::wstring_view::npos) {
        m_end = m_text.size();
        return false;
    }
    m_end = last + 1;
    if (m_text[m_begin + 1] == L'/') {
        m_kind = Tag::Closing;
        --m_depth;
    } else if (m_text[last - 1] == L'/') {
        m_kind = Tag::Empty;
    } else {
        m_kind = Tag::Opening;
        ++m_depth;
    }
    return true;
}

/// The position of the ">" that ends the tag: one that is not in quotes.
std::size_t XmlTags::EndOfTag() const
{
    for (std::size_t position = m_begin + 1; position < m_text.size(); ++position) {
        const wchar_t character = m_text[position];
        if (character == L'>') {
            return position;
        }
        if (character == L'"' || character == L'\'') {
            position = std::min(m_text.find(character, position + 1), m_text.size());
        }
    }
    return std::wstring_view::npos;
}

CString ReasonOfRefusal(std::wstring_view text)
{
    if (text.find_first_not_of(kWhiteSpace) == std::wstring_view::npos) {
        return L"the file is empty";
    }
    XmlTags tags(text);
    bool hasTags = false;
    while (tags.Next()) {
        hasTags = true;
        if (tags.Kind() == XmlTags::Tag::DocumentType) {
            return L"it holds a document type declaration, which is not accepted";
        }
        if (tags.Depth() > kDeepestLevel) {
            const auto line = std::count(text.begin(), text.begin() + tags.Begin(), L'\n') + 1;
            return L"its elements are nested deeper than 256 levels at line " +
                   FormatInteger(line) + L", which is not accepted";
        }
    }
    return hasTags ? L"it is not well-formed XML; an XML editor shows the place"
                   : L"it is not an XML document";
}

} // namespace encap::cli
