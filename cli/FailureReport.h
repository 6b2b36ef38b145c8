#pragma once

#include "cli/CommandError.h"
#include "encap/table/FamilyColumn.h"

namespace encap::cli {

class Console;
class OpenFamily;

/// What a table prints for a result code other than 0, behind "#" and the code: "failed".
[[nodiscard]] const wchar_t* MarkOf(CTableEvaluator::EvaluateResult result);
/// What is wrong with a text that gives a result code other than 0: "it cannot be computed".
[[nodiscard]] const wchar_t* SentenceOf(CTableEvaluator::EvaluateResult result);
/// A code without a value: neither 0 nor 8.
[[nodiscard]] bool HasNoValue(CTableEvaluator::EvaluateResult result);
/// The text that a cell is evaluated from: the row's own text in the language, the row's own text,
/// the column's formula in the language, the column's formula; the first that there is.
[[nodiscard]] CString SourceTextOf(const OpenFamily& family, const CString& rowId,
                                   const CEncapFamilyColumn& column, const CString& language);
/// Why a cell gave a result other than 0, in words: the code, the text that it is evaluated from,
/// what the host was asked and its reason. REQUIRES: the provider forgot its failures before the
/// cell was read and was asked for nothing since.
[[nodiscard]] CString FaultOfCell(const OpenFamily& family, const CString& rowId,
                                  const CEncapFamilyColumn& column, const CString& language,
                                  CTableEvaluator::EvaluateResult result);
/// As much of a text as is good to read in a message.
[[nodiscard]] CString Shortened(const CString& text);

/// What is wrong with a cell, and why: "row r1, column D: result 3, it cannot be computed: ...".
/// REQUIRES: the host was asked for nothing since the cell was read; result is not 0.
[[nodiscard]] CString FailureText(const OpenFamily& family, const CString& rowId,
                                  CEncapFamilyColumn& column,
                                  CTableEvaluator::EvaluateResult result);

/// Tells the console, a line a cell, which cells of a family are not as they should be and why, and
/// counts them. Refers to both.
class FailureReport {
public:
    FailureReport(OpenFamily& family, Console& console);

    /// REQUIRES: as FailureText.
    void Tell(const CString& rowId, CEncapFamilyColumn& column,
              CTableEvaluator::EvaluateResult result);
    /// One line with the counts, when there is anything to tell. cells: how many were read.
    void Summarize(std::size_t cells) const;
    [[nodiscard]] ExitStatus Status() const;

private:
    OpenFamily& m_family;
    Console& m_console;
    std::size_t m_failed = 0;
    std::size_t m_unitless = 0;
};

} // namespace encap::cli
