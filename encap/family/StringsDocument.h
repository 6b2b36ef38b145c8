#pragma once

#include "encap/family/NodeIndex.h"
#include "encap/family/Vocabulary.h"
#include "encap/foundation/StringMap.h"
#include "encap/foundation/Types.h"
#include "encap/xml/XMLParser.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace encap {

/// The strings document of one language, owned by the family's FamilyStrings. Shares the document
/// with the parsers that were handed out. Cell texts are found through an index that is made column
/// by column when it is first asked for, follows the edits made here, and is dropped when the
/// document was edited from outside: a look-up costs the same however many texts there are.
/// Columns, rows, names and identifiers compare exactly; where the document repeats one, the first
/// in document order is read and all are removed.
class StringsDocument {
public:
    explicit StringsDocument(const XMLParser& document) : m_document(document) {}

    [[nodiscard]] const XMLParser& Document() const { return m_document; }

    // Texts of the family: children of the document element, and constant values. Getters give
    // false, with value unchanged, when there is no such text.
    bool GetText(const wchar_t* name, CString& value) const;
    void SetText(const wchar_t* name, const CString& value);
    bool GetConstant(std::wstring_view categoryParameter, CString& value) const;
    void SetConstant(const CString& categoryParameter, const CString& value);

    // Texts of a column.
    bool GetColumnText(std::wstring_view column, std::wstring_view property, CString& value) const;
    /// An empty value removes the text.
    void SetColumnText(const CString& column, const CString& property, const CString& value);
    void RemoveColumnText(std::wstring_view column, const Name& property);

    // Texts of cells.
    bool GetCell(std::wstring_view column, std::wstring_view row, CString& value) const;
    /// An empty value removes the text: an empty cell has no element.
    void SetCell(const CString& column, const CString& row, const CString& value);
    void RemoveCell(std::wstring_view column, std::wstring_view row);
    void RemoveRow(std::wstring_view row);
    void RemoveColumnCells(std::wstring_view column);

private:
    /// The "ColumnStrings" elements of one column and, once asked for, its cell texts by row.
    struct ColumnEntry {
        std::vector<IXMLDOMNode*> elements;
        NodeIndex cells{vocabulary::kRowId.utf8};
        bool cellsKnown = false;
        bool rowsRepeat = false;
    };
    /// Keeps the index in step over an edit made here.
    class Edit {
    public:
        explicit Edit(StringsDocument& document);
        ~Edit();
        Edit(const Edit&) = delete;
        Edit& operator=(const Edit&) = delete;

    private:
        StringsDocument& m_document;
        int m_exceptions; ///< in flight when it began
    };

    void PrepareIndex() const;
    void DropIndexIfStale() const;
    void DropIndex() const;
    void IndexColumns() const;
    ColumnEntry* FindColumn(std::wstring_view column) const;
    ColumnEntry* GetOrAddColumn(const CString& column);
    static NodeIndex& CellsOf(ColumnEntry& entry);
    static void RemoveCellFrom(ColumnEntry& entry, std::string_view row);

    XMLParser m_document;
    // Holds the tree while the index refers into it; empty while there is no index.
    mutable XMLNode m_indexedRoot;
    mutable uint64_t m_indexedChange = 0;
    mutable ExactMap<ColumnEntry> m_columns;
};

} // namespace encap
