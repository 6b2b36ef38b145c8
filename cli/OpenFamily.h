#pragma once

#include "cli/FamilyFile.h"
#include "cli/FamilyHost.h"

#include <optional>

namespace encap::cli {

class Options;

/// The arguments that every command over families shares.
struct FamilyOptions {
    /// --strings and --language
    void Declare(Options& options);

    std::vector<CString> strings;
    std::optional<CString> language;
};

/// A family that is open with its host and in the language asked for. Refers to the host.
class OpenFamily {
public:
    /// stringsProblems: as FamilyFileOptions. Throws FileError; UsageError for a language that the
    /// family does not have.
    OpenFamily(const CString& path, const FamilyOptions& options, FamilyHost& host,
               std::vector<CString>* stringsProblems = nullptr);
    OpenFamily(const OpenFamily&) = delete;
    OpenFamily& operator=(const OpenFamily&) = delete;

    [[nodiscard]] const FamilyFile& File() const { return m_file; }
    [[nodiscard]] CEncapFamily& Family() const { return *m_family; }
    /// A document without a table does not open.
    [[nodiscard]] CEncapFamilyTable& Table() const;
    [[nodiscard]] RecordingProvider& Provider() const { return m_host.Provider(); }
    /// As the family's strings document spells it; the family's current one. Empty without strings.
    [[nodiscard]] const CString& Language() const { return m_language; }

private:
    // In the order in which they are made.
    FamilyHost& m_host;
    Fingerprint m_fingerprint;
    FamilyFile m_file;
    CString m_language;
    std::unique_ptr<CEncapFamily> m_family;
};

} // namespace encap::cli
