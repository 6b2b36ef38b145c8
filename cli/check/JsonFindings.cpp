#include "cli/JsonWriter.h"
#include "cli/Results.h"
#include "cli/check/FindingWriter.h"

namespace encap::cli {
namespace {

class JsonFindings : public FindingWriter {
public:
    explicit JsonFindings(Results& results) : m_results(results), m_json(results.Text()) {}

    void Begin() override
    {
        m_json.BeginObject();
        m_json.Key(L"families");
        m_json.BeginArray();
    }
    void BeginFamily(const CString& path) override
    {
        BeginFile(path);
        m_json.Null();
        m_json.Key(L"findings");
        m_json.BeginArray();
    }
    void Write(const Finding& finding) override
    {
        const RuleEntry& rule = finding.Entry();
        m_json.BreakLine(2);
        m_json.BeginObject();
        m_json.Member(L"rule", rule.id);
        m_json.Member(L"severity", WordOf(rule.severity));
        WritePart(L"row", finding.row);
        WritePart(L"column", finding.column);
        WritePart(L"language", finding.language);
        m_json.Member(L"message", finding.message);
        m_json.Member(L"help", rule.remedy);
        m_json.EndObject();
        m_results.Pass();
    }
    void EndFamily(const FindingCounts& counts) override
    {
        m_json.EndArray();
        WriteCounts(counts);
        m_json.EndObject();
    }
    void WriteUnread(const CString& path, const CString& reason) override
    {
        BeginFile(path);
        m_json.Text(reason);
        m_json.Key(L"findings");
        m_json.BeginArray();
        EndFamily({});
    }
    void End(const CheckTotals& totals) override
    {
        m_json.EndArray();
        m_json.BreakLine(1);
        WriteCounts(totals.findings);
        m_json.EndObject();
        m_results.Text() += '\n';
    }

private:
    void BeginFile(const CString& path)
    {
        m_json.BreakLine(1);
        m_json.BeginObject();
        m_json.Member(L"file", path);
        m_json.Key(L"problem");
    }
    void WritePart(const wchar_t* name, const CString& text)
    {
        m_json.Key(name);
        text.empty() ? m_json.Null() : m_json.Text(text);
    }
    void WriteCounts(const FindingCounts& counts)
    {
        m_json.MemberNumber(L"errors", static_cast<int64_t>(counts.errors));
        m_json.MemberNumber(L"warnings", static_cast<int64_t>(counts.warnings));
    }

    Results& m_results;
    JsonWriter m_json;
};

} // namespace

std::unique_ptr<FindingWriter> MakeJsonFindings(Results& results)
{
    return std::make_unique<JsonFindings>(results);
}

} // namespace encap::cli
