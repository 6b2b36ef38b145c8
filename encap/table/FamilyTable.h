#pragma once

#include "encap/evaluation/TableEvaluator.h"
#include "encap/foundation/DataTypes.h"
#include "encap/foundation/Types.h"
#include "encap/table/FamilyColumn.h"
#include "encap/table/FamilyRow.h"
#include "encap/xml/XMLNode.h"

#include <map>
#include <memory>
#include <set>
#include <vector>

class CEncapFamily;

namespace encap {
struct RowReference;
struct TableAccess;
struct TableState;
} // namespace encap

/// The grid of a family: columns (parameters) by rows (members) over the "FamilyTable" element.
/// Every edit goes to the objects and the document at once, so the document is always the saved
/// form. Owned by its family; owns its columns, rows, evaluator and value cache. Pointers to
/// columns and rows are valid until the column or row is deleted. IDs are looked up without regard
/// to case; indices count from 0. Null texts count as empty. One thread at a time per family.
class ENCAP_API CEncapFamilyTable {
public:
    using EvaluateResult = CTableEvaluator::EvaluateResult;

    /// A table over no document, without family and cache.
    CEncapFamilyTable();
    /// Loads the table. cacheDirectory holds the value cache file, read here and written by the
    /// destructor when it changed; empty or null: no file.
    CEncapFamilyTable(const XMLNode& tableNode, CEncapFamily* family,
                      const wchar_t* cacheDirectory);
    CEncapFamilyTable(const CEncapFamilyTable&) = delete;
    CEncapFamilyTable& operator=(const CEncapFamilyTable&) = delete;
    virtual ~CEncapFamilyTable();

    // Counts and IDs, in table order. A list of IDs is brought up to date by the call that gives
    // it: ask again after an edit.
    uint64_t GetRowsCount() const;
    uint64_t GetColumnsCount() const;
    const std::vector<CString>& GetAllRowIDs() const;
    const std::vector<CString>& GetAllColumnIDs() const;
    /// Empty when the index is out of range.
    CString GetRowIDByIndex(int index) const;
    CString GetFamilyColumnIDByIndex(int index) const;

    // Look-ups: null, -1 or false when there is none. Of equal IDs the last loaded answers by ID.
    CEncapFamilyColumn* GetFamilyColumnByID(const wchar_t* columnId) const;
    CEncapFamilyRow* GetFamilyRowByID(const wchar_t* rowId) const;
    CEncapFamilyColumn* GetFamilyColumnByIndex(int index) const;
    CEncapFamilyRow* GetFamilyRowByIndex(int index) const;
    int GetFamilyColumnIndexByID(const wchar_t* columnId) const;
    int GetFamilyRowIndexByID(const wchar_t* rowId) const;
    CEncapFamilyColumn* GetFamilyColumnByType(CEncapFamilyColumn::ColumnType type) const;
    std::set<CEncapFamilyColumn*>& GetAllColumns(std::set<CEncapFamilyColumn*>& columns) const;
    CEncapFamily* GetFamily() const;
    CTableEvaluator* GetEvaluator() const;
    /// The ID of the status column; empty when the table has none.
    const CString& GetStatusColIDStr() const;
    bool IsColumnMaterial(const wchar_t* columnId) const;
    bool IsColumnLocalized(const wchar_t* columnId) const;
    bool IsRowSuppressed(const wchar_t* rowId) const;
    /// REQUIRES: the column exists; otherwise the answer is text and the setter does nothing.
    DataTypes::ColumnDataType GetColumnDataType(const wchar_t* columnId) const;
    void SetColumnDataType(const wchar_t* columnId, DataTypes::ColumnDataType type);
    void GetActualLanguage(CString& language) const;
    wchar_t GetDecimalSeparator() const;
    bool LocalizeDecimalSeparator() const;

    // Cell values. The forms without a language use the family's current one.
    /// 0 and 8 give a value; 3 with value as it was when there is no such column; else the column's
    /// code (CEncapFamilyColumn::GetValue).
    EvaluateResult GetValue(const wchar_t* rowId, const wchar_t* columnId, CString& value);
    EvaluateResult GetValue(const wchar_t* rowId, const wchar_t* columnId, const wchar_t* language,
                            CString& value);
    /// Does nothing when there is no such column; refreshCache as in CEncapFamilyColumn::SetValue.
    void SetValue(const wchar_t* rowId, const wchar_t* columnId, const wchar_t* value,
                  bool refreshCache);
    void SetValue(const wchar_t* rowId, const wchar_t* columnId, const wchar_t* language,
                  const wchar_t* value, bool refreshCache);
    void SetValue(int rowIndex, const wchar_t* columnId, const wchar_t* value, bool refreshCache);
    void ClearCachedValue(const wchar_t* rowId, const wchar_t* columnId);
    void ClearCachedValue(const wchar_t* rowId, const wchar_t* columnId, const wchar_t* language);
    /// 0 with the column's localized formula, or 1 with formula as it was.
    long GetLocalizedFormula(const wchar_t* columnId, const wchar_t* language, CString& formula);

    // Evaluation and checks of texts.
    /// Evaluates one cell into the value cache; codes 0 to 8, 7 when there is no such column.
    EvaluateResult Evaluate(const CString& rowId, const CString& columnId, const CString& language);
    /// Evaluates a free text in the context of a row; caches nothing; result is set with 0 only.
    EvaluateResult Evaluate(const wchar_t* formula, DataTypes::ColumnFormulaType formulaType,
                            DataTypes::ColumnDataType dataType, const wchar_t* rowId,
                            const wchar_t* units, CString& result);
    /// The text with each reference in braces replaced by the cell's value in the row and language,
    /// a number with its column's unit directly behind it ("3mm", "2ul"): what a numeric cell with
    /// this formula hands to the host. 2 when the braces do not pair up, 3 for an unknown column,
    /// else the first failing cell's code; replaced is set with 0 only.
    EvaluateResult ReplaceReferences(const wchar_t* text, const wchar_t* rowId,
                                     const wchar_t* language, CString& replaced);
    /// Checks a text without evaluating cells; empty units check in "ul".
    EvaluateResult CheckFormulaSyntax(const wchar_t* formula,
                                      DataTypes::ColumnFormulaType formulaType,
                                      DataTypes::ColumnDataType dataType, const wchar_t* units);
    /// Whether a column would accept a formula; 7 when there is no such column.
    EvaluateResult IsFormulaValid(const wchar_t* columnId, const wchar_t* formula);
    /// Whether a value fits a column in a row: its data type, or for a custom numeric column the
    /// bounds and the step grid of its range. False for an unknown column.
    bool IsCellValueValid(const wchar_t* rowId, const wchar_t* columnId, const wchar_t* value);
    /// Has the host compute a text; the answer is read as centimetres and converted to unit (empty:
    /// "ul"). False, with value unspecified, when the host cannot.
    bool GetValueFromExpression(const wchar_t* expression, const wchar_t* unit,
                                double& value) const;

    // Structure. A negative index inserts first, one past the end appends. Null: nothing was done.
    /// An empty rowId gives the row a new GUID; an ID that exists already is not refused.
    CEncapFamilyRow* InsertNewRow(int index, const CString& rowId);
    /// Null when the ID exists (any case).
    CEncapFamilyColumn* InsertNewColumn(int index, const wchar_t* columnId);
    /// False for an invalid index.
    bool DeleteRow(int index);
    bool DeleteColumn(int index);
    /// Appends a row with the source row's own cells ("RID" and "STATUS" aside) and a new ID.
    CEncapFamilyRow* CopyRow(const CString& rowId);
    /// Writes every evaluated value of the source row ("RID" and "STATUS" aside) into the target.
    bool PasteRow(int targetIndex, int sourceIndex);
    CEncapFamilyColumn* DuplicateColumn(int index, const wchar_t* sourceColumnId,
                                        const wchar_t* newColumnId);
    /// Moves the element to index, counted after its removal; past the end becomes the last index,
    /// written back. The ID is compared exactly.
    void ChangeColumnIndex(const wchar_t* columnId, int& index);
    void ChangeRowIndex(const wchar_t* rowId, int& index);
    /// A letter, then letters, digits, "_" and "-", and no column of that ID.
    bool IsValidNewColumnName(const wchar_t* name) const;

    // Status, revisions, materials.
    /// Writes the status cell and the row's suppressed flag ("Suppressed", any case).
    void SetStatusColValue(int rowIndex, const wchar_t* value);
    void SetRowStateOfAllRows(CEncapFamilyRow::RowState state);
    /// Stamps every row with one revision: the given one, or with null one new GUID.
    void BumpAllMemberRevisions(const wchar_t* revision);
    /// Null when there is no "MEMBER_REVISION" column, or at the first row that cannot be read (the
    /// new column stays with the rows copied so far).
    CEncapFamilyColumn* CreateSourceMemberRevisionColumn();
    CString GetMaterialName(const wchar_t* key) const;
    CString GetMaterialRefKey(const wchar_t* name) const;
    /// The row's material key, else the column's; false when there is no material column.
    bool GetMemberMaterialRefId(const wchar_t* rowId, CString& key) const;

    // The whole table.
    bool GetXml(CComBSTR& xml) const;
    /// The table's document with every cell evaluated in the current language; cells that fail keep
    /// their stored text. False when a row or cell has no ID.
    bool GetEvaluatedXml(CComBSTR& xml);
    std::vector<CEncapFamilyColumn*> GetKeyColumns() const;
    /// False with code 7 when there is no such column.
    bool HasColumnUniqueValues(const wchar_t* columnId, EvaluateResult& result);
    bool HasCustomColumns() const;
    bool hasColumnExpression(CString& columnId) const;
    bool isCellOverride(const CString& rowId, const CString& columnId) const;
    /// The index of the first row whose value does not fit the range (null: the column's formula),
    /// -1 when all fit, 0 when there is no such column.
    int CheckRangeColumnData(const wchar_t* columnId, const wchar_t* range);
    /// Deletes the column's cells that do not fit its data type.
    void ValidateAndRepairColumnData(CEncapFamilyColumn* column);
    /// Whether every custom column takes part in the file name; titles names those that do not.
    bool FileNameOfCustomPartIsUnique(std::vector<CString>& titles);
    /// Replaces the chosen values of custom columns, by exact column ID.
    void SetRangeColumnValues(const std::map<CString, CString>& values);
    bool GetRangeColumnValue(const wchar_t* columnId, CString& value) const;

private:
    friend class CEncapFamily;
    friend class CEncapFamilyColumn;
    friend class CEncapFamilyRow;
    friend class CTableEvaluator;
    friend struct encap::TableAccess;

    void InitializeData();
    void ClearData();
    EvaluateResult BuildColumnsDependency();
    EvaluateResult UpdateColumnsDependency(CEncapFamilyColumn* column, const wchar_t* formula);
    void RemoveColumnDependencies(CEncapFamilyColumn* column);
    void BumpMemberRevision(const wchar_t* rowId);
    long GetLocalizedCellValue(const wchar_t* columnId, const wchar_t* rowId,
                               const wchar_t* language, CString& value);
    void DeleteLocalizedCellsValues(const wchar_t* rowId, const wchar_t* columnId,
                                    bool allLanguages);
    long GetRawValue(const wchar_t* rowId, const wchar_t* columnId, CString& value) const;
    void SetRawValue(CEncapFamilyRow& row, const CString& rowId, const wchar_t* columnId,
                     const wchar_t* language, const wchar_t* value);
    void DropCellValues(const CString& rowId, const wchar_t* columnId);
    void DropRowValues(const CString& rowId);
    void DropColumnValues(const CString& columnId);
    void LoadColumn(const XMLNode& node);
    void NoteStatusColumn(CEncapFamilyColumn& column, const CString& columnId);
    void SaveCache();
    CEncapFamilyColumn* EnterColumn(std::size_t place, const XMLNode& element,
                                    const CString& columnId);
    void ConnectColumn(CEncapFamilyColumn& column, const CString& columnId);
    void RegisterReferencesTo(const CString& columnId);
    void ForgetColumnId(const CString& columnId);
    void DeleteCellsOf(const CString& columnId);
    void CloseKeyGap(int32_t weight);
    int PositionOf(const CEncapFamilyColumn& column) const;
    void CopyCell(const encap::RowReference& source, const CString& columnId,
                  const CString& targetId);
    CEncapFamilyColumn* RevisionColumn();
    std::vector<CEncapFamilyColumn*> CustomColumns() const;
    bool FitsColumn(const wchar_t* rowId, const CEncapFamilyColumn& column, const wchar_t* value,
                    const wchar_t* range);

    std::unique_ptr<encap::TableState> m_state;
};
