#include "encap/host/EvaluationError.h"

#include "encap/host/StandaloneEvaluatorProvider.h"

#include <algorithm>

namespace encap::host {

namespace {

using Provider = CStandaloneEvaluatorProvider;

struct MessageRow {
    ErrorKind kind;
    int32_t status;
    std::wstring_view text; // $t token, $d detail, $l and $r the dimensions
};

constexpr MessageRow kMessages[] = {
    {ErrorKind::EmptyExpression, Provider::StatusBadSyntax, L"the expression is empty"},
    {ErrorKind::OperandExpected, Provider::StatusBadSyntax,
     L"\"$t\" stands where a number, a function or \"(\" is expected"},
    {ErrorKind::OperandMissing, Provider::StatusBadSyntax,
     L"the text ends where a number, a function or \"(\" is expected"},
    {ErrorKind::OperatorExpected, Provider::StatusBadSyntax,
     L"an operator is missing before \"$t\""},
    {ErrorKind::NotAnOperator, Provider::StatusBadSyntax, L"\"$t\" is not an operator$d"},
    {ErrorKind::ClosingMissing, Provider::StatusBadSyntax, L"\")\" is missing for this \"(\""},
    {ErrorKind::ClosingUnmatched, Provider::StatusBadSyntax, L"\")\" has no \"(\" before it"},
    {ErrorKind::SeparatorOutside, Provider::StatusBadSyntax,
     L"\";\" separates the arguments of a function and nothing else"},
    {ErrorKind::ChainedComparison, Provider::StatusBadSyntax,
     L"comparisons cannot be chained: join two of them with \"and\""},
    {ErrorKind::NotInsideOperand, Provider::StatusBadSyntax,
     L"\"not\" needs parentheses around it here"},
    {ErrorKind::PowerBehindUnit, Provider::StatusBadSyntax,
     L"\"^\" behind a unit is not clear: write ($t)^$d for the power of the quantity"},
    {ErrorKind::NestedTooDeep, Provider::StatusBadSyntax, L"nested deeper than 256 levels"},
    {ErrorKind::ArgumentCount, Provider::StatusBadSyntax, L"\"$t\" takes $d"},
    {ErrorKind::CallExpected, Provider::StatusBadSyntax, L"\"(\" must follow the function \"$t\""},
    {ErrorKind::UnitWithoutNumber, Provider::StatusBadSyntax,
     L"the unit \"$t\" has no number before it"},
    {ErrorKind::UnitNameExpected, Provider::StatusBadSyntax, L"a unit's name is missing"},
    {ErrorKind::UnitCharacter, Provider::StatusBadSyntax, L"\"$t\" cannot stand in a unit"},
    {ErrorKind::UnitPower, Provider::StatusBadSyntax,
     L"a unit's power is a whole number up to 127 other than 0"},
    {ErrorKind::UnitlessNotAlone, Provider::StatusBadSyntax,
     L"\"ul\" is unitless and cannot be a part of a unit"},
    {ErrorKind::NotANumber, Provider::StatusBadSyntax, L"\"$t\" is not a number"},
    {ErrorKind::MaterialCells, Provider::StatusBadSyntax,
     L"line $t of the materials does not have two cells"},
    {ErrorKind::MaterialQuotes, Provider::StatusBadSyntax,
     L"the quotes of line $t of the materials do not match"},

    {ErrorKind::UnknownName, Provider::StatusUnknownName, L"\"$t\" is not a known name"},
    {ErrorKind::UnknownFunction, Provider::StatusUnknownName, L"\"$t\" is not a known function"},
    {ErrorKind::UnknownUnit, Provider::StatusUnknownName, L"\"$t\" is not a known unit"},
    {ErrorKind::ReservedUnit, Provider::StatusUnknownName,
     L"\"$t\" is a word of the expression language and not a unit"},
    {ErrorKind::UnusableUnit, Provider::StatusUnknownName,
     L"\"$t\" is a logarithmic or calendar unit, which cannot be used"},
    {ErrorKind::UnknownMaterialKey, Provider::StatusUnknownName, L"no material has the key \"$t\""},
    {ErrorKind::UnknownMaterialName, Provider::StatusUnknownName,
     L"no material has the name \"$t\""},

    {ErrorKind::DimensionsDiffer, Provider::StatusBadDimensions,
     L"\"$t\" cannot combine $l and $r"},
    {ErrorKind::DimensionlessExpected, Provider::StatusBadDimensions,
     L"\"$t\" takes numbers without a unit, not $l"},
    {ErrorKind::ExponentUnit, Provider::StatusBadDimensions,
     L"an exponent is a number without a unit, not $r"},
    {ErrorKind::AngleExpected, Provider::StatusBadDimensions, L"\"$t\" takes an angle, not $l"},
    {ErrorKind::PowerNotWhole, Provider::StatusBadDimensions,
     L"\"$t\" of $l does not give whole powers of units up to 127"},
    {ErrorKind::PowerTooLarge, Provider::StatusBadDimensions, L"the powers of the units pass 127"},
    {ErrorKind::CountMisfit, Provider::StatusBadDimensions,
     L"\"$t\" counts in the unit asked for, which is $r and does not fit $l"},
    {ErrorKind::ResultMisfit, Provider::StatusBadDimensions,
     L"the result is $l, which does not fit the unit asked for: $r"},
    {ErrorKind::ConversionMisfit, Provider::StatusBadDimensions, L"$l cannot be converted to $r"},
    {ErrorKind::OffsetUnitUse, Provider::StatusBadDimensions,
     L"\"$t\" has a zero of its own: one number with this unit must be the whole text"},
    {ErrorKind::BareBesideOffset, Provider::StatusBadDimensions,
     L"a bare number beside a temperature is not clear when the unit asked for is \"$d\""},

    {ErrorKind::NoUnitDatabase, Provider::StatusNoUnitDatabase,
     L"\"$t\" cannot be looked up: the unit database of UDUNITS-2 cannot be read"},
};

const MessageRow& RowOf(ErrorKind kind)
{
    const auto* row = std::find_if(std::begin(kMessages), std::end(kMessages) - 1,
                                   [kind](const MessageRow& each) { return each.kind == kind; });
    return *row;
}

CString Described(Dimensions dimensions)
{
    return dimensions.IsNone() ? L"a number without a unit" : dimensions.DatabaseUnit();
}

CString Place(const EvaluationError& error)
{
    const CString place = L" (at character " + std::to_wstring(error.position + 1);
    switch (error.source) {
    case ErrorSource::Expression: return place + L")";
    case ErrorSource::Value: return place + L" of the value)";
    case ErrorSource::Unit: return place + L" of the unit)";
    case ErrorSource::None: break;
    }
    return {};
}

} // namespace

void ErrorToken::Assign(std::wstring_view text)
{
    constexpr std::wstring_view kCut = L"...";
    m_size = std::min(text.size(), m_text.size() - kCut.size());
    std::copy_n(text.begin(), m_size, m_text.begin());
    if (m_size < text.size()) {
        std::copy(kCut.begin(), kCut.end(), m_text.begin() + static_cast<std::ptrdiff_t>(m_size));
        m_size += kCut.size();
    }
}

int32_t EvaluationError::Status() const
{
    return RowOf(kind).status;
}

CString EvaluationError::Sentence() const
{
    if (kind == ErrorKind::None) {
        return {};
    }
    CString sentence;
    const std::wstring_view pattern = RowOf(kind).text;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != L'$') {
            sentence += pattern[i];
            continue;
        }
        switch (pattern[++i]) {
        case L't': sentence += token.View(); break;
        case L'd': sentence += detail.View(); break;
        case L'l': sentence += Described(left); break;
        default: sentence += Described(right); break;
        }
    }
    return sentence + Place(*this);
}

} // namespace encap::host
