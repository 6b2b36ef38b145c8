#include "encap/foundation/RangeParser.h"

#include "encap/foundation/StringUtil.h"
#include "encap/foundation/TextFormat.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace {

/// The positions of "[", the three ";" and "]", rising.
using RangeMarks = std::array<std::size_t, 5>;

/// The first "[", the first "]" and the first three ";" behind it; nothing where one is missing or
/// the bracket closes before the third separator.
std::optional<RangeMarks> FindMarks(std::wstring_view text)
{
    RangeMarks marks{};
    marks[0] = text.find(L'[');
    if (marks[0] == std::wstring_view::npos) {
        return std::nullopt;
    }
    for (std::size_t i = 1; i <= 3; ++i) {
        marks[i] = text.find(L';', marks[i - 1] + 1);
        if (marks[i] == std::wstring_view::npos) {
            return std::nullopt;
        }
    }
    marks[4] = text.find(L']', marks[0] + 1);
    if (marks[4] == std::wstring_view::npos || marks[4] < marks[3]) {
        return std::nullopt;
    }
    return marks;
}

} // namespace

CRangeParser::CRangeParser(const wchar_t* text) : m_source(text != nullptr ? text : L"")
{
    Parse();
}

bool CRangeParser::IsRange(const CString& text)
{
    // Most cells hold plain values: those are told by their first character.
    if (text.empty() || text.front() != L'[') {
        return false;
    }
    const std::optional<RangeMarks> marks = FindMarks(text);
    return marks && marks->back() == text.size() - 1;
}

bool CRangeParser::GetStrValue(CString& out, wchar_t separator) const
{
    out = m_value;
    if (separator == L'.') {
        std::replace(out.begin(), out.end(), L',', L'.');
    } else if (separator == L',') {
        std::replace(out.begin(), out.end(), L'.', L',');
    }
    return m_valid;
}

void CRangeParser::Parse()
{
    const std::optional<RangeMarks> marks = FindMarks(m_source);
    if (!marks) {
        m_valid = false;
        return;
    }
    const std::array<CString*, 4> parts{&m_minimum, &m_maximum, &m_step, &m_default};
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const std::size_t start = (*marks)[i] + 1;
        const std::wstring_view stretch =
            std::wstring_view(m_source).substr(start, (*marks)[i + 1] - start);
        *parts[i] = encap::TrimView(stretch);
    }
    m_valid = CStringUtil::IsNumericValue(m_minimum) && CStringUtil::IsNumericValue(m_maximum);
    if (m_valid) {
        m_value = m_default.empty() ? m_minimum : m_default;
    }
}
