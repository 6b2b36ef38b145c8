#include "encap/evaluation/ExpressionEvaluator.h"

#include "encap/evaluation/ValueText.h"
#include "encap/foundation/NumberText.h"
#include "encap/foundation/RangeParser.h"
#include "encap/foundation/StringUtil.h"
#include "encap/table/TableState.h"

#include <algorithm>
#include <cmath>

namespace encap {

namespace {

bool IsKnown(DataTypes::ColumnFormulaType type)
{
    return type == DataTypes::RangeFormula || type == DataTypes::NormalFormula ||
           type == DataTypes::MaterialFormula;
}

// What stands for a column's value while a formula is checked; null when it does not fit.
const wchar_t* SampleValue(DataTypes::ColumnDataType column, DataTypes::ColumnDataType formula)
{
    if (column == DataTypes::ColumnDataTypeInteger) {
        return L"1";
    }
    const bool fits = column == DataTypes::ColumnDataTypeReal && formula == column;
    return fits ? L"1.1" : nullptr;
}

} // namespace

ExpressionEvaluator::Result ExpressionEvaluator::Evaluate(std::wstring_view formula,
                                                          DataTypes::ColumnFormulaType formulaType,
                                                          DataTypes::ColumnDataType dataType,
                                                          std::wstring_view rowId,
                                                          const CString& units, CString& result)
{
    if (!IsKnown(formulaType)) {
        return CTableEvaluator::EvaluateUnknownColumn;
    }
    CString source(formula);
    if (formulaType == DataTypes::RangeFormula) {
        if (!CRangeParser::IsRange(source)) {
            return CTableEvaluator::EvaluateBadRange;
        }
        const CRangeParser range(source.c_str());
        source = range.hasDefault() ? range.getDefault() : range.getMin();
    }
    const std::shared_ptr<const TokenList> list = m_tokens.Get(source);
    if (list == nullptr) {
        return CTableEvaluator::EvaluateSyntaxError;
    }
    CString expression;
    const Result substituted =
        Substitute(*list, CString(rowId), formulaType == DataTypes::MaterialFormula, dataType,
                   units, expression);
    if (substituted != CTableEvaluator::EvaluateOK) {
        return substituted;
    }
    if (IsNumericType(dataType)) {
        return FinishNumber(std::move(expression), units, result);
    }
    if (dataType != DataTypes::ColumnDataTypeBoolean) {
        JoinTextPieces(expression, result);
        return CTableEvaluator::EvaluateOK;
    }
    if (!CStringUtil::IsLogicalValue(expression.c_str())) {
        return CTableEvaluator::EvaluateTypeMismatch;
    }
    result = std::move(expression);
    return CTableEvaluator::EvaluateOK;
}

ExpressionEvaluator::Result ExpressionEvaluator::Substitute(const TokenList& list,
                                                            const CString& row, bool material,
                                                            DataTypes::ColumnDataType dataType,
                                                            const CString& units,
                                                            CString& expression)
{
    const wchar_t separator = LocalizedSeparator();
    for (const Token& token : list.tokens) {
        if (token.isReference) {
            const Result result = SubstituteReference(token, row, units, expression);
            if (result != CTableEvaluator::EvaluateOK) {
                return result;
            }
        } else if (dataType == DataTypes::ColumnDataTypeReal && separator != L'\0' &&
                   CStringUtil::IsNumericValue(token.text.c_str())) {
            expression += WithSeparator(token.text, separator);
        } else {
            expression += material ? m_host.MaterialName(token.text.c_str()) : token.text;
        }
        if (expression.size() > kLongestExpression) {
            return CTableEvaluator::EvaluateFailed;
        }
    }
    return CTableEvaluator::EvaluateOK;
}

ExpressionEvaluator::Result ExpressionEvaluator::SubstituteReference(const Token& token,
                                                                     const CString& row,
                                                                     const CString& units,
                                                                     CString& expression)
{
    CString value;
    const Result result = m_table.GetValue(row.c_str(), token.text.c_str(), value);
    if (result != CTableEvaluator::EvaluateOK) {
        return result;
    }
    CEncapFamilyColumn* column = m_table.GetFamilyColumnByID(token.text.c_str());
    if (column == nullptr) {
        return CTableEvaluator::EvaluateFailed;
    }
    const CString columnUnit = UnitOrUnitless(TableAccess::Of(*column).unit);
    if (!units.empty() && units != columnUnit && !value.empty() &&
        CStringUtil::IsNumericValue(value.c_str())) {
        double converted = 0.0;
        if (!m_host.Convert(value, columnUnit, units, converted)) {
            return CTableEvaluator::EvaluateFailed;
        }
        value = FormatGeneral(converted, kHostDigits);
    }
    expression += value;
    return CTableEvaluator::EvaluateOK;
}

ExpressionEvaluator::Result ExpressionEvaluator::ReplaceReferences(std::wstring_view text,
                                                                   const CString& rowId,
                                                                   const CString& language,
                                                                   CString& replaced)
{
    const std::shared_ptr<const TokenList> list = m_tokens.Get(text);
    if (list == nullptr) {
        return CTableEvaluator::EvaluateSyntaxError;
    }
    CString expression;
    CString value;
    for (const Token& token : list->tokens) {
        if (!token.isReference) {
            expression += token.text;
            continue;
        }
        const Result result =
            m_table.GetValue(rowId.c_str(), token.text.c_str(), language.c_str(), value);
        if (!HasValue(result)) {
            return result;
        }
        const CEncapFamilyColumn* column = m_table.GetFamilyColumnByID(token.text.c_str());
        if (column == nullptr) {
            return CTableEvaluator::EvaluateFailed;
        }
        AppendReferencedValue(expression, value, TableAccess::Of(*column).unit);
        if (expression.size() > kLongestExpression) {
            return CTableEvaluator::EvaluateFailed;
        }
    }
    replaced = std::move(expression);
    return CTableEvaluator::EvaluateOK;
}

ExpressionEvaluator::Result ExpressionEvaluator::FinishNumber(CString expression,
                                                              const CString& units, CString& result)
{
    if (CStringUtil::IsNumericValue(expression.c_str())) {
        result = std::move(expression);
        return CTableEvaluator::EvaluateOK;
    }
    const CString unit = UnitOrUnitless(units);
    double number = 0.0;
    const int32_t status = m_host.Evaluate(expression, unit, number);
    if (status > 0) {
        return CTableEvaluator::EvaluateTypeMismatch;
    }
    if (status < 0 || !std::isfinite(number)) {
        return CTableEvaluator::EvaluateFailed;
    }
    if (unit != kDatabaseLength) {
        // The answer of a host that cannot convert it stays in the host's own unit.
        m_host.Convert(FormatGeneral(number, kHostDigits), kDatabaseLength, unit, number);
    }
    AssignNumberValue(number, LocalizedSeparator(), result);
    return CTableEvaluator::EvaluateOK;
}

ExpressionEvaluator::Result
ExpressionEvaluator::CollectReferences(std::wstring_view formula,
                                       std::set<CEncapFamilyColumn*>& columns)
{
    const std::shared_ptr<const TokenList> list = m_tokens.Get(formula);
    if (list == nullptr) {
        return CTableEvaluator::EvaluateSyntaxError;
    }
    std::set<CEncapFamilyColumn*> found;
    for (const Token& token : list->tokens) {
        if (!token.isReference) {
            continue;
        }
        CEncapFamilyColumn* column = m_table.GetFamilyColumnByID(token.text.c_str());
        if (column == nullptr) {
            return CTableEvaluator::EvaluateUnknownColumn;
        }
        found.insert(column);
    }
    columns.merge(found);
    return CTableEvaluator::EvaluateOK;
}

ExpressionEvaluator::Result
ExpressionEvaluator::CollectAllReferences(std::wstring_view formula,
                                          std::set<CEncapFamilyColumn*>& columns)
{
    std::vector<CString> formulas{CString(formula)};
    while (!formulas.empty()) {
        const CString next = std::move(formulas.back());
        formulas.pop_back();
        std::set<CEncapFamilyColumn*> direct;
        const Result result = CollectReferences(next, direct);
        if (result != CTableEvaluator::EvaluateOK) {
            return result;
        }
        for (CEncapFamilyColumn* column : direct) {
            if (columns.insert(column).second && column->IsExpressionColumn()) {
                formulas.push_back(TableAccess::Of(*column).formula);
            }
        }
    }
    return CTableEvaluator::EvaluateOK;
}

ExpressionEvaluator::Result
ExpressionEvaluator::CheckSyntax(const CString& formula, DataTypes::ColumnFormulaType formulaType,
                                 DataTypes::ColumnDataType dataType, const CString& units)
{
    if (!IsKnown(formulaType)) {
        return CTableEvaluator::EvaluateUnknownColumn;
    }
    return formulaType == DataTypes::RangeFormula ? CheckRange(formula, dataType, units)
                                                  : CheckNormal(formula, dataType, units);
}

ExpressionEvaluator::Result ExpressionEvaluator::CheckNormal(const CString& formula,
                                                             DataTypes::ColumnDataType dataType,
                                                             const CString& units)
{
    std::set<CEncapFamilyColumn*> references;
    const Result collected = CollectReferences(formula, references);
    if (collected != CTableEvaluator::EvaluateOK) {
        return collected;
    }
    bool fits = true;
    if (IsNumericType(dataType)) {
        const std::shared_ptr<const TokenList> list = m_tokens.Get(formula);
        return CheckNumericReferences(*list, dataType, units);
    }
    if (dataType == DataTypes::ColumnDataTypeBoolean) {
        fits = references.empty()
                   ? CStringUtil::IsLogicalValue(formula.c_str())
                   : references.size() == 1 &&
                         (*references.begin())->GetDataType() == DataTypes::ColumnDataTypeBoolean;
    }
    return fits ? CTableEvaluator::EvaluateOK : CTableEvaluator::EvaluateTypeMismatch;
}

ExpressionEvaluator::Result ExpressionEvaluator::CheckNumericReferences(
    const TokenList& list, DataTypes::ColumnDataType dataType, const CString& units)
{
    CString expression;
    for (const Token& token : list.tokens) {
        if (!token.isReference) {
            expression += token.text;
            continue;
        }
        const CEncapFamilyColumn* column = m_table.GetFamilyColumnByID(token.text.c_str());
        const wchar_t* sample =
            column != nullptr ? SampleValue(column->GetDataType(), dataType) : nullptr;
        if (sample == nullptr) {
            expression += L"{" + token.text + L"}";
            continue;
        }
        expression += sample;
        if (units.empty()) {
            expression += TableAccess::Of(*column).unit;
        }
    }
    return HostAccepts(expression, units) ? CTableEvaluator::EvaluateOK
                                          : CTableEvaluator::EvaluateTypeMismatch;
}

ExpressionEvaluator::Result ExpressionEvaluator::CheckRange(const CString& formula,
                                                            DataTypes::ColumnDataType dataType,
                                                            const CString& units)
{
    if (!CRangeParser::IsRange(formula)) {
        return CTableEvaluator::EvaluateBadRange;
    }
    if (!IsNumericType(dataType)) {
        return CTableEvaluator::EvaluateTypeMismatch;
    }
    const CRangeParser range(formula.c_str());
    const CString parts[] = {range.getMin(), range.getMax(), range.getStep(), range.getDefault()};
    bool complete = true;
    for (const CString& part : parts) {
        complete = complete && !part.empty() && part.find(L'{') == CString::npos;
        const Result result =
            part.empty() ? CTableEvaluator::EvaluateOK : CheckNormal(part, dataType, units);
        if (result != CTableEvaluator::EvaluateOK) {
            return result;
        }
    }
    if (!complete) {
        return CTableEvaluator::EvaluateOK;
    }
    const double least = UnitlessNumber(parts[0]);
    const double most = UnitlessNumber(parts[1]);
    const double step = UnitlessNumber(parts[2]);
    const double preset = UnitlessNumber(parts[3]);
    const bool bad = least > most || step > most - least || preset < least || preset > most;
    return bad ? CTableEvaluator::EvaluateBadRange : CTableEvaluator::EvaluateOK;
}

bool ExpressionEvaluator::HostAccepts(const CString& expression, const CString& units)
{
    double ignored = 0.0;
    return m_host.Evaluate(expression, UnitOrUnitless(units), ignored) >= 0;
}

// The part in "ul", whatever the host's own measure of it is; 0 when the host fails.
double ExpressionEvaluator::UnitlessNumber(const CString& text)
{
    if (!m_host.HasProvider()) {
        return CStringUtil::ToDouble(text.c_str());
    }
    double number = 0.0;
    double one = 0.0;
    if (m_host.Evaluate(text, kUnitless, number) < 0 ||
        m_host.Evaluate(L"1.0", kUnitless, one) < 0 || one == 0.0) {
        return 0.0;
    }
    return number / one;
}

wchar_t ExpressionEvaluator::LocalizedSeparator() const
{
    return m_table.LocalizeDecimalSeparator() ? m_table.GetDecimalSeparator() : L'\0';
}

} // namespace encap
