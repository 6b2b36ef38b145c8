#pragma once

#include "encap/family/Family.h"
#include "encap/foundation/Types.h"

#include <memory>
#include <vector>

namespace encap::cli {

class Fingerprint;

/// A strings document of a family and the file that it was read from.
struct StringsFile {
    CString path;
    CString language; ///< its xml:lang; empty when it has none
    XMLParser document;
    bool isReferenced = false; ///< named by the family, not by an argument
};

/// What is read besides the family document itself.
struct FamilyFileOptions {
    /// Strings documents beside those that the family names; one of a language that is there
    /// already takes its place.
    std::vector<CString> addedStrings;
    /// Where it is not null, strings documents that the family names and that are missing or do not
    /// parse are left out and told here, a sentence each, instead of being thrown.
    std::vector<CString>* stringsProblems = nullptr;
    /// Where it is not null, it takes the bytes of every file that is read.
    Fingerprint* fingerprint = nullptr;
};

/// A family document and its strings documents with the paths that they were read from. Opens the
/// family once.
class FamilyFile {
public:
    /// Throws FileError: a file that is missing, not readable, not valid in its encoding, or that
    /// does not parse.
    FamilyFile(const CString& path, const FamilyFileOptions& options);

    [[nodiscard]] const CString& Path() const { return m_path; }
    /// At most one a language, in the order of the family's references, added ones behind.
    [[nodiscard]] const std::vector<StringsFile>& Strings() const { return m_strings; }
    [[nodiscard]] std::vector<CString> Languages() const;
    /// Throws UsageError when results are to go to one of the files.
    void RequireNotRead(const CString& output) const;

    /// The family with the first language given (where there is one) as its current one; the
    /// others follow in their order. Gives up the documents. The provider (may be null) must
    /// outlive the family; an empty cache folder is none. Throws FileError when the document has
    /// no table.
    [[nodiscard]] std::unique_ptr<CEncapFamily> Open(IEvaluatorProvider* provider,
                                                     const CString& firstLanguage,
                                                     const CString& cacheFolder,
                                                     bool localizeDecimalSeparator);

private:
    void ReadReferences(const FamilyFileOptions& options);
    void ReadStrings(const CString& path, bool isReferenced, const FamilyFileOptions& options);
    void Enter(StringsFile strings);

    CString m_path;
    XMLParser m_document;
    std::vector<StringsFile> m_strings;
};

} // namespace encap::cli
