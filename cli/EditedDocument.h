#pragma once

#include "encap/xml/XMLParser.h"

#include <string>
#include <vector>

namespace encap::cli {

/// A document that is being edited, and the file that it was read from. Shares the document with
/// the family that is open over it.
class EditedDocument {
public:
    /// Reads the file. Throws FileError.
    EditedDocument(CString path, XMLParser document);

    [[nodiscard]] const CString& Path() const { return m_path; }
    [[nodiscard]] const CString& OldText() const { return m_oldText; }
    [[nodiscard]] const XMLParser& Document() const { return m_document; }
    [[nodiscard]] bool IsChanged() const;
    /// As ChangesBetween.
    [[nodiscard]] std::vector<CString> Changes() const;
    /// The file's new content: the old one to the byte where nothing changed, and in the encoding
    /// of the old one. Throws FileError when the encoding cannot hold it.
    [[nodiscard]] std::string NewBytes() const;

private:
    [[nodiscard]] std::string BytesByLibrary() const;

    CString m_path;
    std::string m_oldBytes;
    CString m_oldText;
    XMLParser m_document;
};

} // namespace encap::cli
