#pragma once

#include "encap/foundation/StringMap.h"
#include "encap/foundation/Types.h"

#include <memory>
#include <string_view>
#include <vector>

class CEncapFamilyColumn;

namespace encap {

/// One piece of an expression: literal text as it stands, or the trimmed ID of a column that stood
/// in braces.
struct Token {
    bool isReference = false;
    CString text;

    // The column last found for a reference, and the table structure that it was found in.
    mutable CEncapFamilyColumn* column = nullptr;
    mutable uint64_t structureVersion = 0;
};

struct TokenList {
    std::vector<Token> tokens;
    bool hasReferences = false;
};

/// Splits an expression at its braces; null when they do not pair up.
[[nodiscard]] std::shared_ptr<const TokenList> Tokenize(std::wstring_view expression);

/// Whether an expression names a column in braces, without regard to case; false when it does not
/// split.
[[nodiscard]] bool RefersTo(std::wstring_view expression, std::wstring_view columnId);

/// Token lists by expression text. Texts without a reference are not kept, and a budget ends the
/// adding of new ones, so that a host that evaluates ever new texts does not fill the memory.
class TokenCache {
public:
    [[nodiscard]] std::shared_ptr<const TokenList> Get(std::wstring_view expression);

private:
    ExactMap<std::shared_ptr<const TokenList>> m_lists;
    std::size_t m_characters = 0;
};

} // namespace encap
