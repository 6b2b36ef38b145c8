#include "encap/evaluation/Tokens.h"

#include "encap/foundation/TextFormat.h"

#include <algorithm>

namespace encap {

namespace {

constexpr std::size_t kTokenCacheCharacters = 4U << 20U;

void AddLiteral(TokenList& list, std::wstring_view text)
{
    if (!text.empty()) {
        list.tokens.push_back({false, CString(text)});
    }
}

} // namespace

std::shared_ptr<const TokenList> Tokenize(std::wstring_view expression)
{
    auto list = std::make_shared<TokenList>();
    std::wstring_view rest = expression;
    while (true) {
        const std::size_t open = rest.find(L'{');
        const std::wstring_view literal = rest.substr(0, open);
        if (literal.find(L'}') != std::wstring_view::npos) {
            return nullptr;
        }
        AddLiteral(*list, literal);
        if (open == std::wstring_view::npos) {
            return list;
        }
        const std::size_t close = rest.find(L'}', open + 1);
        if (close == std::wstring_view::npos) {
            return nullptr;
        }
        list->tokens.push_back({true, CString(TrimView(rest.substr(open + 1, close - open - 1)))});
        list->hasReferences = true;
        rest = rest.substr(close + 1);
    }
}

bool RefersTo(std::wstring_view expression, std::wstring_view columnId)
{
    if (expression.find(L'{') == std::wstring_view::npos) {
        return false;
    }
    const std::shared_ptr<const TokenList> list = Tokenize(expression);
    return list != nullptr &&
           std::any_of(list->tokens.begin(), list->tokens.end(), [&](const Token& token) {
               return token.isReference && EqualNoCase(token.text, columnId);
           });
}

std::shared_ptr<const TokenList> TokenCache::Get(std::wstring_view expression)
{
    const auto found = m_lists.find(expression);
    if (found != m_lists.end()) {
        return found->second;
    }
    std::shared_ptr<const TokenList> list = Tokenize(expression);
    if (list != nullptr && list->hasReferences &&
        m_characters + expression.size() <= kTokenCacheCharacters) {
        m_characters += expression.size();
        m_lists.emplace(expression, list);
    }
    return list;
}

} // namespace encap
