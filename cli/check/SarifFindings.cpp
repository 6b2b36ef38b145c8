#include "cli/Fingerprint.h"
#include "cli/JsonWriter.h"
#include "cli/Results.h"
#include "cli/check/FindingWriter.h"
#include "encap/foundation/TextFormat.h"
#include "encap/foundation/Version.h"
#include "encap/platform/Encoding.h"
#include "encap/platform/Files.h"

#include <algorithm>

namespace encap::cli {
namespace {

constexpr const wchar_t* kSchema =
    L"https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/sarif-schema-2.1.0.json";

bool IsUnreserved(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') ||
           std::string_view("-._~/").find(character) != std::string_view::npos;
}

std::string PercentEncoded(const std::string& bytes)
{
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string encoded;
    for (const char byte : bytes) {
        if (IsUnreserved(byte)) {
            encoded += byte;
            continue;
        }
        const auto value = static_cast<unsigned char>(byte);
        encoded.append(1, '%').append(1, kDigits[value >> 4]).append(1, kDigits[value & 0xF]);
    }
    return encoded;
}

/// A text as SARIF's messages have it: braces stand for arguments there unless they are doubled.
CString MessageText(const CString& text)
{
    CString doubled;
    for (const wchar_t character : text) {
        doubled.append(character == L'{' || character == L'}' ? 2 : 1, character);
    }
    return doubled;
}

/// Where in the document a finding is: "FamilyTable/Rows/Row[r1]/Cell[D]"; empty for the family.
CString ElementPath(const Finding& finding)
{
    if (finding.row.empty()) {
        return finding.column.empty()
                   ? CString()
                   : FormatText(L"FamilyTable/Columns/Column[%s]", {finding.column});
    }
    const CString row = FormatText(L"FamilyTable/Rows/Row[%s]", {finding.row});
    return finding.column.empty() ? row : FormatText(L"%s/Cell[%s]", {row, finding.column});
}

/// What stays when texts and other places of a family change.
CString PlaceFingerprint(const Finding& finding)
{
    Fingerprint fingerprint;
    for (const CString& part :
         {CString(finding.Entry().id), finding.row, finding.column, finding.language}) {
        fingerprint.Add(platform::WideToUtf8(part));
    }
    return platform::Utf8ToWide(fingerprint.Hex());
}

class SarifFindings : public FindingWriter {
public:
    explicit SarifFindings(Results& results) : m_results(results), m_json(results.Text()) {}

    void Begin() override;
    void BeginFamily(const CString& path) override { m_uri = platform::Utf8ToWide(FileUri(path)); }
    void Write(const Finding& finding) override;
    void EndFamily(const FindingCounts&) override {}
    void WriteUnread(const CString& path, const CString& reason) override
    {
        m_unread.emplace_back(platform::Utf8ToWide(FileUri(path)), reason);
    }
    void End(const CheckTotals& totals) override;

private:
    void WriteTool();
    void WriteMessage(const wchar_t* name, const CString& text);
    void WritePhysicalLocation(const CString& uri);
    void WriteLogicalLocation(const Finding& finding);
    void WriteProperties(const Finding& finding);

    Results& m_results;
    JsonWriter m_json;
    CString m_uri;
    std::vector<std::pair<CString, CString>> m_unread; ///< URI and reason
};

void SarifFindings::Begin()
{
    m_json.BeginObject();
    m_json.Member(L"$schema", kSchema);
    m_json.BreakLine(1);
    m_json.Member(L"version", L"2.1.0");
    m_json.BreakLine(1);
    m_json.Key(L"runs");
    m_json.BeginArray();
    m_json.BeginObject();
    WriteTool();
    m_json.BreakLine(1);
    m_json.Key(L"results");
    m_json.BeginArray();
}

void SarifFindings::WriteTool()
{
    m_json.Key(L"tool");
    m_json.BeginObject();
    m_json.Key(L"driver");
    m_json.BeginObject();
    m_json.Member(L"name", L"encap");
    m_json.Member(L"semanticVersion", kVersion);
    m_json.Key(L"rules");
    m_json.BeginArray();
    for (const RuleEntry& rule : Rules()) {
        m_json.BreakLine(2);
        m_json.BeginObject();
        m_json.Member(L"id", rule.id);
        WriteMessage(L"shortDescription", rule.summary);
        WriteMessage(L"help", rule.remedy);
        m_json.Key(L"defaultConfiguration");
        m_json.BeginObject();
        m_json.Member(L"level", WordOf(rule.severity));
        m_json.EndObject();
        m_json.EndObject();
    }
    m_json.EndArray();
    m_json.EndObject();
    m_json.EndObject();
}

void SarifFindings::WriteMessage(const wchar_t* name, const CString& text)
{
    m_json.Key(name);
    m_json.BeginObject();
    m_json.Member(L"text", MessageText(text));
    m_json.EndObject();
}

void SarifFindings::Write(const Finding& finding)
{
    m_json.BreakLine(2);
    m_json.BeginObject();
    m_json.Member(L"ruleId", finding.Entry().id);
    m_json.MemberNumber(L"ruleIndex", static_cast<int64_t>(finding.rule));
    m_json.Member(L"level", WordOf(finding.Entry().severity));
    WriteMessage(L"message", finding.message + L".");
    m_json.Key(L"locations");
    m_json.BeginArray();
    m_json.BeginObject();
    WritePhysicalLocation(m_uri);
    WriteLogicalLocation(finding);
    m_json.EndObject();
    m_json.EndArray();
    m_json.Key(L"partialFingerprints");
    m_json.BeginObject();
    m_json.Member(L"encapPlace/v1", PlaceFingerprint(finding));
    m_json.EndObject();
    WriteProperties(finding);
    m_json.EndObject();
    m_results.Pass();
}

void SarifFindings::WritePhysicalLocation(const CString& uri)
{
    m_json.Key(L"physicalLocation");
    m_json.BeginObject();
    m_json.Key(L"artifactLocation");
    m_json.BeginObject();
    m_json.Member(L"uri", uri);
    m_json.EndObject();
    m_json.EndObject();
}

void SarifFindings::WriteLogicalLocation(const Finding& finding)
{
    const CString path = ElementPath(finding);
    if (path.empty()) {
        return;
    }
    m_json.Key(L"logicalLocations");
    m_json.BeginArray();
    m_json.BeginObject();
    m_json.Member(L"name", finding.column.empty() ? finding.row : finding.column);
    m_json.Member(L"fullyQualifiedName", path);
    m_json.Member(L"kind", L"element");
    m_json.EndObject();
    m_json.EndArray();
}

void SarifFindings::WriteProperties(const Finding& finding)
{
    const std::pair<const wchar_t*, const CString&> parts[] = {
        {L"row", finding.row}, {L"column", finding.column}, {L"language", finding.language}};
    m_json.Key(L"properties");
    m_json.BeginObject();
    for (const auto& [name, text] : parts) {
        if (!text.empty()) {
            m_json.Member(name, text);
        }
    }
    m_json.EndObject();
}

void SarifFindings::End(const CheckTotals& totals)
{
    m_json.EndArray();
    m_json.BreakLine(1);
    m_json.Key(L"invocations");
    m_json.BeginArray();
    m_json.BeginObject();
    m_json.MemberBool(L"executionSuccessful", totals.unread == 0);
    m_json.Key(L"toolExecutionNotifications");
    m_json.BeginArray();
    for (const auto& [uri, reason] : m_unread) {
        m_json.BreakLine(2);
        m_json.BeginObject();
        m_json.Member(L"level", L"error");
        WriteMessage(L"message", reason + L".");
        m_json.Key(L"locations");
        m_json.BeginArray();
        m_json.BeginObject();
        WritePhysicalLocation(uri);
        m_json.EndObject();
        m_json.EndArray();
        m_json.EndObject();
    }
    m_json.EndArray();
    m_json.EndObject();
    m_json.EndArray();
    m_json.EndObject();
    m_json.EndArray();
    m_json.EndObject();
    m_results.Text() += '\n';
}

} // namespace

// Where "\" separates directories, a path may begin with a drive or with a server.
std::string FileUri(const CString& path)
{
    const bool hasDrives = platform::PathSeparator() == L'\\';
    CString slashed = path;
    if (hasDrives) {
        std::replace(slashed.begin(), slashed.end(), L'\\', L'/');
    }
    const std::string bytes = platform::WideToUtf8(slashed);
    if (hasDrives && bytes.size() > 1 && bytes[1] == ':') {
        return "file:///" + bytes.substr(0, 2) + PercentEncoded(bytes.substr(2));
    }
    if (hasDrives && bytes.starts_with("//")) {
        return "file:" + PercentEncoded(bytes);
    }
    return (bytes.starts_with('/') ? "file://" : "") + PercentEncoded(bytes);
}

std::unique_ptr<FindingWriter> MakeSarifFindings(Results& results)
{
    return std::make_unique<SarifFindings>(results);
}

} // namespace encap::cli
