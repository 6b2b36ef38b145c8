#include "cli/DisplayText.h"
#include "cli/Results.h"
#include "cli/check/FindingWriter.h"
#include "encap/foundation/NumberText.h"

namespace encap::cli {
namespace {

CString Counted(std::size_t count, const wchar_t* one, const wchar_t* many)
{
    return FormatInteger(static_cast<int64_t>(count)) + L' ' + (count == 1 ? one : many);
}

/// "row r1, column D in de: ", as far as it applies.
CString PlaceWords(const Finding& finding)
{
    CString words;
    if (!finding.row.empty()) {
        words += L"row " + finding.row;
    }
    if (!finding.column.empty()) {
        words.append(words.empty() ? L"" : L", ").append(L"column ").append(finding.column);
    }
    if (!finding.language.empty()) {
        words.append(words.empty() ? L"" : L" ").append(L"in ").append(finding.language);
    }
    return words.empty() ? words : words + L": ";
}

/// Two lines a finding: what it is, and what to do.
class TextFindings : public FindingWriter {
public:
    explicit TextFindings(Results& results) : m_results(results) {}

    void BeginFamily(const CString& path) override { m_path = path; }
    void Write(const Finding& finding) override
    {
        const RuleEntry& rule = finding.Entry();
        CString line = m_path + L": " + PlaceWords(finding);
        line.append(WordOf(rule.severity)).append(L": ").append(finding.message);
        AddLine(line.append(L" [").append(rule.id).append(L"]"));
        AddLine(CString(L"    ") + rule.remedy);
        m_results.Pass();
    }
    void EndFamily(const FindingCounts&) override {}
    void WriteUnread(const CString&, const CString&) override {}
    void End(const CheckTotals& totals) override
    {
        const FindingCounts& counts = totals.findings;
        CString line = Counted(totals.families, L"family", L"families") + L" checked: ";
        line += counts.errors + counts.warnings == 0
                    ? CString(L"nothing found")
                    : Counted(counts.errors, L"error", L"errors") + L", " +
                          Counted(counts.warnings, L"warning", L"warnings");
        if (totals.unread > 0) {
            line += L"; " + Counted(totals.unread, L"file", L"files") + L" not read";
        }
        AddLine(line);
    }

private:
    void AddLine(const CString& line)
    {
        AppendForDisplay(m_results.Text(), line);
        m_results.Text() += '\n';
    }

    Results& m_results;
    CString m_path;
};

} // namespace

std::unique_ptr<FindingWriter> MakeTextFindings(Results& results)
{
    return std::make_unique<TextFindings>(results);
}

} // namespace encap::cli
