#pragma once

#include "cli/Condition.h"

namespace encap::cli {

/// Takes the text of a condition apart. Used once; refers to both.
class ConditionParser {
public:
    ConditionParser(std::wstring_view text, Condition& condition)
        : m_text(text), m_condition(condition)
    {
    }

    /// Throws UsageError.
    void Parse();

private:
    enum class TokenKind { Literal, Column, Quoted };
    struct Token {
        TokenKind kind = TokenKind::Literal;
        CString text;
        std::size_t position = 0; ///< of its first character, from 0
    };

    void Split();
    void ReadColumn();
    void ReadQuoted();
    void ReadLiteral();
    void RequireBalancedEnds(std::size_t first, std::size_t behind) const;
    bool AddTextComparison(std::size_t first);
    std::size_t PlaceOf(const CString& column);
    [[noreturn]] void Refuse(std::size_t position, const CString& reason) const;

    std::wstring_view m_text;
    Condition& m_condition;
    std::vector<Token> m_tokens;
    std::size_t m_at = 0;
};

} // namespace encap::cli
