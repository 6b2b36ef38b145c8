#pragma once

#include "cli/FamilyChecks.h"

#include <memory>
#include <string>

namespace encap::cli {

class Results;

struct FindingCounts {
    std::size_t errors = 0;
    std::size_t warnings = 0;

    void Count(Severity severity) { ++(severity == Severity::Error ? errors : warnings); }
};

/// What a run over families came to.
struct CheckTotals {
    FindingCounts findings;
    std::size_t families = 0; ///< that were checked
    std::size_t unread = 0;   ///< files that could not be read
};

/// Prints findings in one format as they come. REQUIRES: Begin; for each file either BeginFamily,
/// its findings and EndFamily, or WriteUnread; then End.
class FindingWriter {
public:
    FindingWriter() = default;
    FindingWriter(const FindingWriter&) = delete;
    FindingWriter& operator=(const FindingWriter&) = delete;
    virtual ~FindingWriter() = default;

    virtual void Begin() {}
    virtual void BeginFamily(const CString& path) = 0;
    virtual void Write(const Finding& finding) = 0;
    virtual void EndFamily(const FindingCounts& counts) = 0;
    /// A file that could not be read, with the reason.
    virtual void WriteUnread(const CString& path, const CString& reason) = 0;
    virtual void End(const CheckTotals& totals) = 0;
};

// Each refers to the results.
[[nodiscard]] std::unique_ptr<FindingWriter> MakeTextFindings(Results& results);
[[nodiscard]] std::unique_ptr<FindingWriter> MakeJsonFindings(Results& results);
/// SARIF 2.1.0 (OASIS): one run, a result a finding.
[[nodiscard]] std::unique_ptr<FindingWriter> MakeSarifFindings(Results& results);

/// The URI reference of a file (RFC 3986): a relative path stays relative, an absolute one becomes
/// a file URI; all but letters, digits and "-._~/" is percent-encoded UTF-8.
[[nodiscard]] std::string FileUri(const CString& path);

} // namespace encap::cli
