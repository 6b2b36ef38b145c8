#include "encap/xml/QueryLiteral.h"

namespace encap {
namespace {

bool Holds(std::wstring_view text, wchar_t character)
{
    return text.find(character) != std::wstring_view::npos;
}

void AppendQuoted(CString& out, std::wstring_view text, wchar_t quote)
{
    out += quote;
    out += text;
    out += quote;
}

} // namespace

CString QueryLiteral(std::wstring_view value, wchar_t preferredQuote)
{
    const wchar_t otherQuote = preferredQuote == L'"' ? L'\'' : L'"';
    CString literal;
    if (!Holds(value, preferredQuote) || !Holds(value, otherQuote)) {
        AppendQuoted(literal, value, Holds(value, preferredQuote) ? otherQuote : preferredQuote);
        return literal;
    }
    // Pieces without the preferred quotes stand in them, each preferred quote in the other ones.
    literal = L"concat(";
    std::wstring_view rest = value;
    while (!rest.empty()) {
        const bool isQuote = rest.front() == preferredQuote;
        const std::wstring_view piece = rest.substr(
            0, isQuote ? rest.find_first_not_of(preferredQuote) : rest.find(preferredQuote));
        AppendQuoted(literal, piece, isQuote ? otherQuote : preferredQuote);
        rest.remove_prefix(piece.size());
        literal += rest.empty() ? L")" : L",";
    }
    return literal;
}

} // namespace encap
