#pragma once

#include "encap/foundation/Types.h"
#include "encap/xml/XMLNode.h"

class CEncapFamilyTable;

namespace encap {
struct TableAccess;
} // namespace encap

/// One member of a family: one "Row" element with its "Cell" children. The row keeps no copy of its
/// cells: raw values are read from and written to the document. Created, owned and deleted by its
/// table; a copy refers to the same element. One thread at a time per family.
class ENCAP_API CEncapFamilyRow {
public:
    /// The edit state; never written to the document, reset by the host.
    enum RowState : int32_t {
        RowStateUnchanged = 0,
        RowStateModified = 1, ///< a cell was written (the revision columns aside)
        RowStateNew = 2,      ///< inserted since the last reset
    };

    CEncapFamilyRow() = default;
    CEncapFamilyRow(const XMLNode& rowNode, CEncapFamilyTable* table);
    CEncapFamilyRow(const CEncapFamilyRow&) = default;
    CEncapFamilyRow& operator=(const CEncapFamilyRow&) = default;
    virtual ~CEncapFamilyRow();

    const XMLNode& GetXMLNode() const;
    void GetRowID(CString& rowId) const;
    /// Writes the attribute only: the table and the strings documents keep the old ID.
    void SetRowID(const wchar_t* rowId);

    // Values, by the table and in its current language. REQUIRES: the row has a table.
    /// The evaluated value; value stays as it was when the read fails.
    void GetValue(const wchar_t* columnId, CString& value) const;
    void SetValue(const wchar_t* columnId, const wchar_t* value, bool refreshCache);

    /// Whether the row holds a cell of its own for the column (an empty cell counts). The column ID
    /// is compared exactly, here and in everything below.
    bool HasRawValue(const wchar_t* columnId) const;
    /// Removes the row's cell of the column, its cached value in the current language and its
    /// localized texts (of all languages, else of the current one). REQUIRES: the row has a table.
    void DeleteCellsColumnValues(const wchar_t* columnId, bool allLanguages);

    bool IsSuppressed() const;
    /// Sets the flag only; CEncapFamilyTable::SetStatusColValue writes the status cell too.
    void SetIsSuppressed(bool suppressed);
    RowState GetRowState() const;
    void SetRowState(RowState state);
    /// True for every state but RowStateUnchanged: a new row is modified.
    bool IsRowModified() const;

private:
    friend class CEncapFamilyTable;
    friend struct encap::TableAccess;

    void InitializeData();
    /// 0 with the cell's text, or 1 with an empty value when the row has no such cell.
    long GetRawValue(const wchar_t* columnId, CString& value) const;
    void SetRawValue(const wchar_t* columnId, const wchar_t* value);

    XMLNode m_node;
    CEncapFamilyTable* m_table = nullptr;
    bool m_suppressed = false;
    RowState m_state = RowStateUnchanged;
};
