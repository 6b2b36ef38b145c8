#include "encap/foundation/StringUtil.h"

#include "encap/foundation/CaseFolding.h"
#include "encap/foundation/NumberText.h"
#include "encap/foundation/TextFormat.h"
#include "encap/platform/Guid.h"
#include "encap/platform/Locale.h"

#include <algorithm>
#include <array>
#include <limits>

namespace {

constexpr std::array<std::wstring_view, 10> kLogicalValues{L"TRUE", L"FALSE", L"T", L"F", L"yes",
                                                           L"no",   L"Y",     L"N", L"1", L"0"};

constexpr std::wstring_view kNotInFileNames = L"?\\/<>:*|\"";

std::wstring_view ViewOf(const wchar_t* text)
{
    return text != nullptr ? std::wstring_view(text) : std::wstring_view();
}

bool IsDigit(wchar_t character)
{
    return character >= L'0' && character <= L'9';
}

bool IsExponentMark(wchar_t character)
{
    return character == L'e' || character == L'E';
}

/// Calls the action with each stretch between the separators, the last one included.
template <class Action>
void ForEachPiece(std::wstring_view source, std::wstring_view separator, Action action)
{
    std::size_t start = 0;
    for (;;) {
        const std::size_t end = source.find(separator, start);
        if (end == std::wstring_view::npos) {
            action(source.substr(start));
            return;
        }
        action(source.substr(start, end - start));
        start = end + separator.size();
    }
}

/// A piece of a concatenation without its blanks and its pair of quotes.
std::wstring_view Unquoted(std::wstring_view piece)
{
    piece = encap::TrimView(piece);
    if (piece.empty() || piece.front() != L'"' || piece.back() != L'"') {
        return piece;
    }
    // A piece that is a single quote character is its own pair.
    return piece.size() == 1 ? std::wstring_view() : piece.substr(1, piece.size() - 2);
}

void AppendHexadecimal(CString& out, uint32_t value, int digits)
{
    constexpr std::wstring_view kDigits = L"0123456789abcdef";
    for (int i = digits - 1; i >= 0; --i) {
        out += kDigits[(value >> (4 * i)) & 0xF];
    }
}

} // namespace

void CStringUtil::Split(const CString& source, const CString& separator, CStringArray& list,
                        const CString& emptyValue)
{
    if (source.empty() || separator.empty()) {
        return;
    }
    ForEachPiece(source, separator, [&](std::wstring_view piece) {
        list.emplace_back(piece.empty() ? std::wstring_view(emptyValue) : piece);
    });
}

bool CStringUtil::ExtractByBracket(const CString& source, const CString& delimiters,
                                   const CString& bracket, CStringArray* list)
{
    if (source.empty() || delimiters.empty() || bracket.empty() || list == nullptr) {
        return false;
    }
    std::size_t start = source.find_first_not_of(delimiters);
    while (start != CString::npos) {
        const std::size_t end = std::min(source.find_first_of(delimiters, start), source.size());
        const auto token = std::wstring_view(source).substr(start, end - start);
        const std::size_t bracketAt = token.find(bracket);
        if (bracketAt != std::wstring_view::npos) {
            const std::wstring_view name = encap::TrimView(token.substr(0, bracketAt));
            if (!name.empty()) {
                list->emplace_back(name);
            }
        }
        start = source.find_first_not_of(delimiters, end);
    }
    return true;
}

CString CStringUtil::TranslateStringSymbol(const CString& text)
{
    CString result;
    ForEachPiece(text, L"&", [&](std::wstring_view piece) { result += Unquoted(piece); });
    return result;
}

bool CStringUtil::IsNumberStr(const CString& text)
{
    return text.empty() || encap::ReadLeadingNumber(text).consumed == text.size();
}

bool CStringUtil::IsNumericValue(const wchar_t* text)
{
    return IsNumericValue(ViewOf(text));
}

bool CStringUtil::IsNumericValue(std::wstring_view text)
{
    bool markSeen = false;
    bool exponentSeen = false;
    bool digitSeen = text.empty();
    for (std::size_t i = 0; i < text.size(); ++i) {
        const wchar_t character = text[i];
        if (IsDigit(character)) {
            digitSeen = true;
        } else if (character == L'+' || character == L'-') {
            if (i > 0 && !IsExponentMark(text[i - 1])) {
                return false;
            }
        } else if (character == L',' || character == L'.') {
            if (markSeen || exponentSeen) {
                return false;
            }
            markSeen = true;
        } else if (IsExponentMark(character)) {
            if (exponentSeen || i == 0 || !IsDigit(text[i - 1])) {
                return false;
            }
            exponentSeen = true;
        } else {
            return false;
        }
    }
    return digitSeen;
}

double CStringUtil::ToDouble(const wchar_t* text)
{
    return ToDouble(ViewOf(text));
}

double CStringUtil::ToDouble(std::wstring_view text)
{
    return encap::ReadLeadingNumber(text).value;
}

bool CStringUtil::IsIntegerValue(double value, double tolerance)
{
    constexpr double kBelow = double{std::numeric_limits<int32_t>::min()} - 1.0;
    constexpr double kAbove = double{std::numeric_limits<int32_t>::max()} + 1.0;
    if (!(value > kBelow && value < kAbove)) {
        return false;
    }
    const double fraction = value - static_cast<int32_t>(value);
    return -tolerance < fraction && fraction < tolerance;
}

bool CStringUtil::IsLogicalValue(const wchar_t* text)
{
    const std::wstring_view word = encap::TrimView(ViewOf(text));
    return std::any_of(kLogicalValues.begin(), kLogicalValues.end(),
                       [&](std::wstring_view value) { return encap::EqualNoCase(value, word); });
}

bool CStringUtil::TrimDoubleString(CString& text)
{
    // npos + 1 is 0: a text of nothing but the character becomes empty.
    text.erase(text.find_last_not_of(L'0') + 1);
    text.erase(text.find_last_not_of(L'.') + 1);
    return true;
}

wchar_t CStringUtil::GetDecimalSeparator()
{
    return encap::platform::UserDecimalSeparator();
}

CString CStringUtil::ReplaceDecimalPointOfCell(CString& text)
{
    if (IsNumericValue(std::wstring_view(text))) {
        std::replace(text.begin(), text.end(), L',', L'.');
    }
    return text;
}

CString CStringUtil::ReplaceDecimalPointOfColumnExpression(const CString& expression, bool toPoint)
{
    CString result = expression;
    if (expression.find_first_of(L".,") == CString::npos) {
        return result;
    }
    const wchar_t mark = toPoint ? L'.' : GetDecimalSeparator();
    bool outsideBraces = true;
    for (wchar_t& character : result) {
        if (character == L'{') {
            outsideBraces = false;
        } else if (character == L'}') {
            outsideBraces = true;
        } else if (outsideBraces && (character == L',' || (character == L'.' && !toPoint))) {
            character = mark;
        }
    }
    return result;
}

CString CStringUtil::NewGuid()
{
    const encap::platform::Guid guid = encap::platform::CreateGuid();
    CString text;
    if (guid == encap::platform::Guid{}) {
        return text;
    }
    text.reserve(36);
    AppendHexadecimal(text, guid.data1, 8);
    text += L'-';
    AppendHexadecimal(text, guid.data2, 4);
    text += L'-';
    AppendHexadecimal(text, guid.data3, 4);
    for (std::size_t i = 0; i < guid.data4.size(); ++i) {
        if (i == 0 || i == 2) {
            text += L'-';
        }
        AppendHexadecimal(text, guid.data4[i], 2);
    }
    return text;
}

bool CStringUtil::LegalizeForFileName(CString& text)
{
    for (wchar_t& character : text) {
        if (kNotInFileNames.find(character) != std::wstring_view::npos) {
            character = L'_';
        }
    }
    text = encap::TrimView(text);
    return true;
}
