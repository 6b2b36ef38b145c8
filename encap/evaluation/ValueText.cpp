#include "encap/evaluation/ValueText.h"

#include "encap/foundation/NumberText.h"
#include "encap/foundation/StringUtil.h"
#include "encap/foundation/TextFormat.h"

namespace encap {

namespace {

constexpr int kValueDigits = 8;

void AppendUnquoted(CString& out, std::wstring_view piece)
{
    for (std::size_t i = 0; i < piece.size(); ++i) {
        if (piece[i] != L'"') {
            out.push_back(piece[i]);
        } else if (i + 1 < piece.size() && piece[i + 1] == L'"') {
            out.push_back(L'"');
            ++i;
        }
    }
}

} // namespace

CString UnitOrUnitless(const CString& unit)
{
    return unit.empty() ? CString(kUnitless) : unit;
}

bool AppendReferencedValue(CString& expression, const CString& value, const CString& unit)
{
    expression += value;
    if (!CStringUtil::IsNumericValue(std::wstring_view(value))) {
        return false;
    }
    unit.empty() ? expression += kUnitless : expression += unit;
    return true;
}

void JoinTextPieces(std::wstring_view expression, CString& joined)
{
    if (!HoldsEither(expression, L'&', L'"')) {
        joined = TrimView(expression);
        return;
    }
    if (expression.front() == L'&') {
        joined = expression;
        return;
    }
    joined.clear();
    while (true) {
        const std::size_t end = expression.find(L'&');
        AppendUnquoted(joined, TrimView(expression.substr(0, end)));
        if (end == std::wstring_view::npos) {
            return;
        }
        expression = expression.substr(end + 1);
    }
}

CString WithSeparator(CString number, wchar_t separator)
{
    std::size_t mark = number.find(L'.');
    if (mark == CString::npos) {
        mark = number.find(L',');
    }
    if (mark != CString::npos) {
        number[mark] = separator;
    }
    return number;
}

void AssignNumberValue(double number, wchar_t separator, CString& text)
{
    text.clear();
    AppendGeneral(text, number, kValueDigits);
    const std::size_t mark = separator != L'\0' ? text.find(L'.') : CString::npos;
    if (mark != CString::npos) {
        text[mark] = separator;
    }
}

} // namespace encap
