#include "cli/Condition.h"

#include "cli/ColumnFacts.h"
#include "cli/ConditionParser.h"
#include "cli/FailureReport.h"
#include "cli/OpenFamily.h"
#include "encap/foundation/TextFormat.h"
#include "encap/table/FamilyTable.h"

#include <cmath>

namespace encap::cli {
namespace {

using Kind = Condition::Piece::Kind;

constexpr const wchar_t* kUnitless = L"ul";

bool ComparesText(const Condition::Piece& piece)
{
    return piece.kind == Kind::TextEquals || piece.kind == Kind::TextDiffers;
}

/// The same for every value that may stand in the expression.
bool IsNotUnderstood(int32_t status)
{
    return status == CStandaloneEvaluatorProvider::StatusBadSyntax ||
           status == CStandaloneEvaluatorProvider::StatusUnknownName;
}

CString WhyNot(const RecordingProvider& host)
{
    const FailedQuestion* failure = host.LastFailure();
    return failure != nullptr ? L"asked to " + failure->text + L": " + failure->reason
                              : CString(L"the host does not answer");
}

} // namespace

Condition::Condition(const CString& text) : m_text(text)
{
    ConditionParser(text, *this).Parse();
}

// With a number in every place, units may not fit, but names and operators have to.
void Condition::RequireUnderstood(RecordingProvider& host) const
{
    CString sample;
    for (const Piece& piece : m_pieces) {
        sample += piece.kind == Kind::Literal ? piece.text : L"1";
    }
    double value = 0.0;
    host.Forget();
    const int32_t status = host.EvaluateExpression(sample.c_str(), kUnitless, value);
    if (IsNotUnderstood(status)) {
        throw UsageError(L"the condition '" + m_text + L"' is not understood: " + WhyNot(host));
    }
}

FamilyCondition::FamilyCondition(const Condition& condition, OpenFamily& family)
    : m_condition(condition), m_family(family)
{
    FindColumns();
    if (m_hasColumns) {
        FindMisfit();
    }
    if (m_hasColumns && m_misfit.empty()) {
        FindMisunderstanding();
    }
}

void FamilyCondition::FindColumns()
{
    for (const CString& id : m_condition.Columns()) {
        CEncapFamilyColumn* column = m_family.Table().GetFamilyColumnByID(id.c_str());
        m_hasColumns = m_hasColumns && column != nullptr;
        m_columns.push_back(column);
    }
}

void FamilyCondition::FindMisfit()
{
    for (const Condition::Piece& piece : m_condition.Pieces()) {
        if (piece.kind == Kind::Literal) {
            continue;
        }
        const CEncapFamilyColumn& column = *m_columns[piece.column];
        if (HoldsNumbers(column) && ComparesText(piece)) {
            m_misfit = L"the column " + IdOf(column) +
                       L" holds numbers: it cannot be compared with a quoted text";
        } else if (!HoldsNumbers(column) && !ComparesText(piece)) {
            m_misfit = L"the column " + IdOf(column) +
                       L" holds texts: it can only be compared, by == or !=, with a quoted text";
        }
    }
}

// A number in every place rather than the values of a member, of which one may be empty or odd.
void FamilyCondition::FindMisunderstanding()
{
    CString sample;
    for (const Condition::Piece& piece : m_condition.Pieces()) {
        if (piece.kind == Kind::Literal) {
            sample += piece.text;
            continue;
        }
        sample += L'1';
        if (piece.kind == Kind::Number) {
            sample += UnitOf(*m_columns[piece.column]);
        }
    }
    double value = 0.0;
    m_family.Provider().Forget();
    if (IsNotUnderstood(m_family.Provider().EvaluateExpression(sample.c_str(), kUnitless, value))) {
        m_misfit = WhyNot(m_family.Provider());
    }
}

std::optional<bool> FamilyCondition::Holds(const CString& rowId, std::vector<CString>& values,
                                           CString& failure)
{
    if (!ReadValues(rowId, values, failure)) {
        return std::nullopt;
    }
    CString expression;
    const auto replaced = m_family.Table().ReplaceReferences(
        Question(values).c_str(), rowId.c_str(), m_family.Language().c_str(), expression);
    if (replaced != CTableEvaluator::EvaluateOK) {
        failure = FormatText(L"row %s: %s", {rowId, SentenceOf(replaced)});
        return std::nullopt;
    }
    double value = 0.0;
    m_family.Provider().Forget();
    const int32_t status =
        m_family.Provider().EvaluateExpression(expression.c_str(), kUnitless, value);
    if (status < 0 || !std::isfinite(value)) {
        failure = FormatText(L"row %s: %s", {rowId, WhyNot(m_family.Provider())});
        return std::nullopt;
    }
    return value != 0.0;
}

bool FamilyCondition::ReadValues(const CString& rowId, std::vector<CString>& values,
                                 CString& failure)
{
    values.resize(m_columns.size());
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        m_family.Provider().Forget();
        const auto result =
            m_columns[i]->GetValue(rowId.c_str(), m_family.Language().c_str(), values[i]);
        if (HasNoValue(result)) {
            failure = FailureText(m_family, rowId, *m_columns[i], result);
            return false;
        }
        if (values[i].empty() && HoldsNumbers(*m_columns[i])) {
            failure =
                FormatText(L"row %s, column %s: the cell is empty", {rowId, IdOf(*m_columns[i])});
            return false;
        }
    }
    return true;
}

/// The condition with its comparisons of texts decided; references to numbers still stand in
/// braces.
CString FamilyCondition::Question(const std::vector<CString>& values) const
{
    CString question;
    for (const Condition::Piece& piece : m_condition.Pieces()) {
        if (piece.kind == Kind::Literal) {
            question += piece.text;
        } else if (piece.kind == Kind::Number) {
            question += L'{';
            question += m_condition.Columns()[piece.column];
            question += L'}';
        } else {
            const bool isEqual = values[piece.column] == piece.text;
            question += isEqual == (piece.kind == Kind::TextEquals) ? L'1' : L'0';
        }
    }
    return question;
}

} // namespace encap::cli
