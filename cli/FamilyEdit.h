#pragma once

#include "cli/EditedDocument.h"
#include "cli/OpenFamily.h"

namespace encap::cli {

class Console;
class FileBatch;

/// The arguments that every command that edits a family shares.
struct EditOptions {
    /// --language, --strings, --dry-run, --in-place and -o
    void Declare(Options& options);
    /// Throws UsageError unless it is said where the result goes.
    void Check() const;

    FamilyOptions family;
    bool isDryRun = false;
    bool isInPlace = false;
    CString output;
};

/// One command's edits of a family: opens it, gives the command the live family, and at the end
/// prints what changed or saves all of it or nothing. What is not finished is not saved.
class FamilyEdit {
public:
    /// Throws FileError, UsageError.
    FamilyEdit(const CString& path, const EditOptions& options);

    [[nodiscard]] OpenFamily& Opened() { return m_family; }
    [[nodiscard]] CEncapFamily& Family() { return m_family.Family(); }
    [[nodiscard]] CEncapFamilyTable& Table() { return m_family.Table(); }
    /// The family's document, then those of FamilyFile::Strings in their order.
    [[nodiscard]] const std::vector<EditedDocument>& Documents() const { return m_documents; }

    // What an argument names; throws UsageError when there is none.
    [[nodiscard]] CEncapFamilyColumn& Column(const CString& id);
    /// The row's ID as the document has it.
    [[nodiscard]] CString RowId(const CString& id);

    /// Throws FileError; the files are then as they were.
    void Finish(Console& console);

private:
    void PrintChanges(Console& console) const;
    void SaveInPlace() const;
    void SaveAside();
    [[nodiscard]] CString NameAside(std::size_t index, const std::vector<CString>& taken) const;
    void SetReferences(const std::vector<CString>& names);

    EditOptions m_options;
    FamilyHost m_host;
    OpenFamily m_family;
    std::vector<EditedDocument> m_documents;
};

/// "NAME=TEXT" in its two parts; throws UsageError without a "=" or a name.
[[nodiscard]] std::pair<CString, CString> SplitAssignment(const CString& argument,
                                                          const CString& option);

} // namespace encap::cli
