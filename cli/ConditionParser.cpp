#include "cli/ConditionParser.h"

#include "cli/CommandError.h"
#include "encap/foundation/CaseFolding.h"
#include "encap/foundation/NumberText.h"
#include "encap/foundation/TextFormat.h"

#include <algorithm>

namespace encap::cli {
namespace {

using Kind = Condition::Piece::Kind;

constexpr std::wstring_view kEquals = L"==";
constexpr std::wstring_view kDiffers = L"!=";

bool IsNameCharacter(wchar_t character)
{
    return IsLetter(character) || (character >= L'0' && character <= L'9') || character == L'_';
}

/// The text ends in the word, which is not the end of a longer one; in any case.
bool EndsInWord(std::wstring_view text, std::wstring_view word)
{
    return text.size() >= word.size() &&
           EqualNoCase(text.substr(text.size() - word.size()), word) &&
           (text.size() == word.size() || !IsNameCharacter(text[text.size() - word.size() - 1]));
}

bool BeginsWithWord(std::wstring_view text, std::wstring_view word)
{
    return text.size() >= word.size() && EqualNoCase(text.substr(0, word.size()), word) &&
           (text.size() == word.size() || !IsNameCharacter(text[word.size()]));
}

/// A truth value may stand behind the text.
bool LeadsToCondition(std::wstring_view literal)
{
    const std::wstring_view text = TrimView(literal);
    return text.ends_with(L'(') || text.ends_with(L';') || EndsInWord(text, L"and") ||
           EndsInWord(text, L"or") || EndsInWord(text, L"not");
}

/// A truth value may stand before the text.
bool FollowsCondition(std::wstring_view literal)
{
    const std::wstring_view text = TrimView(literal);
    return text.starts_with(L')') || text.starts_with(L';') || BeginsWithWord(text, L"and") ||
           BeginsWithWord(text, L"or");
}

} // namespace

void ConditionParser::Parse()
{
    Split();
    for (std::size_t i = 0; i < m_tokens.size();) {
        if (AddTextComparison(i)) {
            i += 3;
            continue;
        }
        const Token& token = m_tokens[i];
        if (token.kind == TokenKind::Quoted) {
            Refuse(token.position, L"a quoted text is compared, by == or !=, with a column");
        }
        if (token.kind == TokenKind::Column) {
            m_condition.m_pieces.push_back({Kind::Number, {}, PlaceOf(token.text)});
        } else {
            m_condition.m_pieces.push_back({Kind::Literal, token.text, 0});
        }
        ++i;
    }
    if (m_condition.m_columns.empty()) {
        throw UsageError(L"the condition '" + CString(m_text) +
                         L"' names no column: columns stand in braces, as in '{D} >= 8mm'");
    }
}

void ConditionParser::Split()
{
    while (m_at < m_text.size()) {
        switch (m_text[m_at]) {
        case L'{': ReadColumn(); break;
        case L'"': ReadQuoted(); break;
        case L'}': Refuse(m_at, L"the \"}\" has no \"{\" before it");
        default: ReadLiteral();
        }
    }
}

void ConditionParser::ReadColumn()
{
    const std::size_t close = m_text.find(L'}', m_at);
    if (close == std::wstring_view::npos) {
        Refuse(m_at, L"the \"{\" has no \"}\" behind it");
    }
    const std::wstring_view id = TrimView(m_text.substr(m_at + 1, close - m_at - 1));
    if (id.empty()) {
        Refuse(m_at, L"the braces name no column");
    }
    m_tokens.push_back({TokenKind::Column, CString(id), m_at});
    m_at = close + 1;
}

// A quote in the text is written twice.
void ConditionParser::ReadQuoted()
{
    Token token{TokenKind::Quoted, {}, m_at};
    for (++m_at; m_at < m_text.size(); ++m_at) {
        const bool isQuote = m_text[m_at] == L'"';
        const bool isDoubled = isQuote && m_text.substr(m_at + 1).starts_with(L'"');
        if (isQuote && !isDoubled) {
            ++m_at;
            m_tokens.push_back(std::move(token));
            return;
        }
        token.text += m_text[m_at];
        m_at += isDoubled ? 1 : 0;
    }
    Refuse(token.position, L"the quoted text has no end");
}

void ConditionParser::ReadLiteral()
{
    const std::size_t end = std::min(m_text.find_first_of(L"{}\"", m_at), m_text.size());
    m_tokens.push_back({TokenKind::Literal, CString(m_text.substr(m_at, end - m_at)), m_at});
    m_at = end;
}

/// A column, == or != and a quoted text, or the other way round, from that token on.
bool ConditionParser::AddTextComparison(std::size_t first)
{
    if (first + 2 >= m_tokens.size() || m_tokens[first + 1].kind != TokenKind::Literal) {
        return false;
    }
    const Token& left = m_tokens[first];
    const Token& right = m_tokens[first + 2];
    const std::wstring_view operation = TrimView(m_tokens[first + 1].text);
    const bool isColumnFirst = left.kind == TokenKind::Column && right.kind == TokenKind::Quoted;
    const bool isTextFirst = left.kind == TokenKind::Quoted && right.kind == TokenKind::Column;
    if ((!isColumnFirst && !isTextFirst) || (operation != kEquals && operation != kDiffers)) {
        return false;
    }
    RequireBalancedEnds(first, first + 3);
    const Token& column = isColumnFirst ? left : right;
    const Token& text = isColumnFirst ? right : left;
    m_condition.m_pieces.push_back({operation == kEquals ? Kind::TextEquals : Kind::TextDiffers,
                                    text.text, PlaceOf(column.text)});
    return true;
}

// The comparison becomes one number, so that nothing may stand beside it that would take a part of
// it for itself.
void ConditionParser::RequireBalancedEnds(std::size_t first, std::size_t behind) const
{
    const auto isLiteral = [this](std::size_t i) { return m_tokens[i].kind == TokenKind::Literal; };
    const auto isBlank = [this](std::size_t i) { return TrimView(m_tokens[i].text).empty(); };
    const bool fitsBefore =
        first == 0 || (isLiteral(first - 1) &&
                       (LeadsToCondition(m_tokens[first - 1].text) || (first == 1 && isBlank(0))));
    const bool fitsBehind =
        behind == m_tokens.size() ||
        (isLiteral(behind) && (FollowsCondition(m_tokens[behind].text) ||
                               (behind + 1 == m_tokens.size() && isBlank(behind))));
    if (!fitsBefore || !fitsBehind) {
        Refuse(m_tokens[first].position, L"beside a comparison of texts there may only be and, or, "
                                         L"not, ; and parentheses");
    }
}

std::size_t ConditionParser::PlaceOf(const CString& column)
{
    std::vector<CString>& columns = m_condition.m_columns;
    const auto found = std::find_if(columns.begin(), columns.end(), [&](const CString& known) {
        return EqualNoCase(known, column);
    });
    const auto place = static_cast<std::size_t>(found - columns.begin());
    if (found == columns.end()) {
        columns.push_back(column);
    }
    return place;
}

void ConditionParser::Refuse(std::size_t position, const CString& reason) const
{
    throw UsageError(L"the condition '" + CString(m_text) + L"' is not understood: " + reason +
                     L" (at character " + FormatInteger(static_cast<int64_t>(position) + 1) + L")");
}

} // namespace encap::cli
