#include "cli/FailureReport.h"

#include "cli/ColumnFacts.h"
#include "cli/Console.h"
#include "cli/OpenFamily.h"
#include "encap/foundation/NumberText.h"
#include "encap/foundation/TextFormat.h"
#include "encap/table/FamilyTable.h"
#include "encap/xml/QueryLiteral.h"

namespace encap::cli {
namespace {

struct ResultWords {
    const wchar_t* mark;
    const wchar_t* sentence;
};

// By result code.
constexpr ResultWords kResults[] = {
    {L"", L""},
    {L"circular", L"its value depends on itself"},
    {L"syntax", L"its braces do not pair up"},
    {L"failed", L"it cannot be computed"},
    {L"range", L"its range is not valid"},
    {L"unknown column", L"it refers to a column that there is not"},
    {L"type", L"its value does not fit the type of the column"},
    {L"no value", L"it has no value"},
    {L"unitless", L"it was computed without units, since it cannot be computed with them"},
};

const ResultWords& WordsOf(CTableEvaluator::EvaluateResult result)
{
    return kResults[result >= CTableEvaluator::EvaluateOK &&
                            result <= CTableEvaluator::EvaluateUnitlessFallback
                        ? result
                        : CTableEvaluator::EvaluateFailed];
}

/// The failed question that led to a result; null when the host has no part in it.
const FailedQuestion* CauseOf(const RecordingProvider& host, CTableEvaluator::EvaluateResult result)
{
    if (result == CTableEvaluator::EvaluateUnitlessFallback) {
        return host.LastFailure();
    }
    const bool isHosts = result == CTableEvaluator::EvaluateFailed && host.EndedInFailure();
    return isHosts ? host.LastFailure() : nullptr;
}

/// The first column in braces that the table does not have; empty when there is none.
CString MissingColumn(const CEncapFamilyTable& table, const CString& source)
{
    std::size_t open = source.find(L'{');
    while (open != CString::npos) {
        const std::size_t close = source.find(L'}', open);
        if (close == CString::npos) {
            return {};
        }
        CString id(TrimView(std::wstring_view(source).substr(open + 1, close - open - 1)));
        if (table.GetFamilyColumnByID(id.c_str()) == nullptr) {
            return id;
        }
        open = source.find(L'{', close);
    }
    return {};
}

CString Counted(std::size_t count, const wchar_t* one, const wchar_t* many)
{
    return FormatInteger(static_cast<int64_t>(count)) + (count == 1 ? one : many);
}

} // namespace

const wchar_t* MarkOf(CTableEvaluator::EvaluateResult result)
{
    return WordsOf(result).mark;
}

const wchar_t* SentenceOf(CTableEvaluator::EvaluateResult result)
{
    return WordsOf(result).sentence;
}

bool HasNoValue(CTableEvaluator::EvaluateResult result)
{
    return result != CTableEvaluator::EvaluateOK &&
           result != CTableEvaluator::EvaluateUnitlessFallback;
}

CString Shortened(const CString& text)
{
    constexpr std::size_t kMost = 200;
    return text.size() <= kMost ? text : text.substr(0, kMost) + L"...";
}

CString SourceTextOf(const OpenFamily& family, const CString& rowId,
                     const CEncapFamilyColumn& column, const CString& language)
{
    const CString columnId = IdOf(column);
    CString text;
    if (column.IsLocalized() && family.Family().GetLocalizedCellValue(
                                    columnId.c_str(), rowId.c_str(), language.c_str(), text) == 0) {
        return text;
    }
    const CEncapFamilyRow* row = family.Table().GetFamilyRowByID(rowId.c_str());
    XMLNode cell;
    if (row != nullptr && row->GetXMLNode().GetChildNode(
                              (L"Cell[@ColumnId=" + QueryLiteral(columnId) + L"]").c_str(), cell)) {
        cell.GetNodeText(text);
        return text;
    }
    column.GetFormula(text, language.c_str());
    return text;
}

CString FaultOfCell(const OpenFamily& family, const CString& rowId,
                    const CEncapFamilyColumn& column, const CString& language,
                    CTableEvaluator::EvaluateResult result)
{
    const CString source = SourceTextOf(family, rowId, column, language);
    CString fault = FormatText(L"result %d, %s: \"%s\"", {static_cast<int32_t>(result),
                                                          SentenceOf(result), Shortened(source)});
    if (const FailedQuestion* cause = CauseOf(family.Provider(), result)) {
        fault += FormatText(L"; asked to %s: %s", {Shortened(cause->text), cause->reason});
    } else if (result == CTableEvaluator::EvaluateFailed) {
        const CString missing = MissingColumn(family.Table(), source);
        fault += missing.empty() ? CString() : L"; there is no column " + missing;
    }
    return fault;
}

CString FailureText(const OpenFamily& family, const CString& rowId, CEncapFamilyColumn& column,
                    CTableEvaluator::EvaluateResult result)
{
    return FormatText(
        L"row %s, column %s: %s",
        {rowId, IdOf(column), FaultOfCell(family, rowId, column, family.Language(), result)});
}

FailureReport::FailureReport(OpenFamily& family, Console& console)
    : m_family(family), m_console(console)
{
}

void FailureReport::Tell(const CString& rowId, CEncapFamilyColumn& column,
                         CTableEvaluator::EvaluateResult result)
{
    ++(HasNoValue(result) ? m_failed : m_unitless);
    m_console.Message(m_family.File().Path() + L": " +
                      FailureText(m_family, rowId, column, result));
}

void FailureReport::Summarize(std::size_t cells) const
{
    if (m_failed == 0 && m_unitless == 0) {
        return;
    }
    CString message = m_family.File().Path() + L": of " + Counted(cells, L" cell", L" cells");
    if (m_failed > 0) {
        message += FormatText(L", %s no value", {Counted(m_failed, L" has", L" have")});
    }
    if (m_unitless > 0) {
        message +=
            FormatText(L", %s computed without units", {Counted(m_unitless, L" was", L" were")});
    }
    m_console.Message(message);
}

ExitStatus FailureReport::Status() const
{
    return m_failed == 0 && m_unitless == 0 ? ExitStatus::Done : ExitStatus::Findings;
}

} // namespace encap::cli
