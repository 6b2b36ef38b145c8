#pragma once

#include "cli/CommandError.h"
#include "encap/table/FamilyColumn.h"

namespace encap::cli {

class OpenFamily;

/// An edit that the family does not take; nothing of its command is carried out.
class RefusedEdit : public CommandError {
public:
    /// The message begins with the family's path.
    RefusedEdit(const OpenFamily& family, std::wstring_view reason);
};

/// Why a column does not take a formula, in words: the unknown column and those with a similar
/// name, the brace that does not pair up and its place, the cycle, what the host was asked and its
/// reason. REQUIRES: the provider forgot its failures before the check that gave the result.
[[nodiscard]] CString FaultOfFormula(const OpenFamily& family, CEncapFamilyColumn& column,
                                     const CString& formula,
                                     CTableEvaluator::EvaluateResult result);
/// Sets a column's formula in the family's language (an empty one: none any more); throws
/// RefusedEdit.
void SetCheckedFormula(OpenFamily& family, CEncapFamilyColumn& column, const CString& formula);
/// Throws RefusedEdit unless a row may hold the text in a column: a value of the column's type, or
/// a formula that gives one. The empty text, which clears the cell, is always right.
void CheckCellText(OpenFamily& family, const CString& rowId, CEncapFamilyColumn& column,
                   const CString& text);
/// The columns whose names are like a wrong one ("there is D, DN"), else all, as far as they are
/// good to read.
[[nodiscard]] CString SuggestColumns(const OpenFamily& family, const CString& wrong);

} // namespace encap::cli
