#pragma once

#include "encap/evaluation/TableEvaluator.h"
#include "encap/foundation/DataTypes.h"
#include "encap/foundation/Types.h"
#include "encap/xml/XMLNode.h"

#include <functional>
#include <memory>
#include <set>
#include <vector>

class CEncapFamilyColVexilData;
class CEncapFamilyRow;
class CEncapFamilyTable;

namespace encap {
struct ColumnState;
struct TableAccess;
} // namespace encap

/// One parameter of a family table: one "Column" element, its attributes, its role, and the set of
/// columns whose formulas refer to it. Every cell of the column is read and written through it.
/// Created, owned and deleted by its table; refers to the table and shares the document's element.
/// A copy refers to the same element and is in no table. One thread at a time per family.
class ENCAP_API CEncapFamilyColumn {
public:
    /// The column's role, from the category parameter that it supplies.
    enum ColumnType : int32_t {
        ColumnTypeOrdinary = 0,
        ColumnTypeFileName = 1, ///< file names of members; values compare without regard to case
        ColumnTypeMaterial = 2,
        ColumnTypeRestricted3 = 3,
        ColumnTypeRestricted4 = 4,
        ColumnTypeRestricted5 = 5,
    };

    // Construction: without an element every read gives 7 and every write does nothing.
    CEncapFamilyColumn();
    CEncapFamilyColumn(const XMLNode& columnNode, CEncapFamilyTable* table);
    CEncapFamilyColumn(const CEncapFamilyColumn& other);
    CEncapFamilyColumn& operator=(const CEncapFamilyColumn& other);

    // Cell values; the order of the virtual operations is part of the interface.
    virtual ~CEncapFamilyColumn();
    /// The evaluated value of one cell: cached, or computed and cached. 0 and 8 give a value
    /// (8: computed without units, never cached); any other code leaves value as it was. A row that
    /// the table does not have reads as a row without cells.
    virtual CTableEvaluator::EvaluateResult GetValue(const wchar_t* rowId, const wchar_t* language,
                                                     CString& value);
    /// The same in the table's current language.
    virtual CTableEvaluator::EvaluateResult GetValue(const wchar_t* rowId, CString& value);
    /// Stores the raw value of one cell and its localized text; an empty value removes the cell.
    /// With refreshCache the cached values of the cell and of what depends on it are dropped first.
    /// The text is cached as if it were evaluated: after storing a formula text,
    /// ClearCachedValue makes the next read evaluate it.
    virtual void SetValue(const wchar_t* rowId, const wchar_t* language, const wchar_t* value,
                          bool refreshCache);
    virtual void SetValue(const wchar_t* rowId, const wchar_t* value, bool refreshCache);
    /// Drops one cached value; without a language the row's values in every language.
    virtual void ClearCachedValue(const wchar_t* rowId, const wchar_t* language);
    virtual void ClearCachedValue(const wchar_t* rowId);

    // Attributes of the element. Setters write the attribute and the field together; null is empty.
    void GetColumnID(CString& columnId) const;
    /// Writes the attribute only: the table, the cells, mappings and strings keep the old ID.
    void SetColumnID(const wchar_t* columnId);
    void GetTitle(CString& title) const;
    /// The localized title, or the attribute where the language has none.
    void GetTitle(CString& title, const wchar_t* language) const;
    void SetTitle(const wchar_t* title);
    void SetTitle(const wchar_t* title, const wchar_t* language);
    void GetUnitType(CString& unit) const;
    void SetUnitType(const wchar_t* unit);
    DataTypes::ColumnDataType GetDataType() const;
    void SetDataType(DataTypes::ColumnDataType type);
    /// The order among the key columns; 0 or less: not a key column.
    int32_t GetKeyWeight() const;
    void SetKeyWeight(const int32_t& weight);
    bool IsHidden() const;
    void SetIsHidden(const bool& hidden);
    bool IsCustom() const;
    /// Bumps all member revisions when the flag changes and the change causes a refresh.
    void SetIsCustom(const bool& custom);

    // Flags that live in memory only.
    bool IsStatusColumn() const;
    void SetIsStatusColumn(bool status);
    bool IsPropertyColumn() const;
    void SetIsPropertyColumn(bool property);
    bool IsGeometryColumn() const;
    void SetIsGeometryColumn(bool geometry);
    bool IsZelPropertyColumn() const;
    void SetIsZelPropertyColumn(bool property);
    ColumnType GetColumnType() const;
    void SetColumnType(ColumnType type);
    /// Sets the role that belongs to a category identifier (exact comparison); any role but
    /// ColumnTypeOrdinary also makes the column a host property column.
    void UpdateColumnType(const CString& category);
    /// The document property that the column drives; owned by the column, null when there is none.
    CEncapFamilyColVexilData* GetColVexilData() const;
    void SetColVexilData(std::unique_ptr<CEncapFamilyColVexilData> data);

    // Predicates.
    bool IsKeyColumn() const;
    bool IsExpressionColumn() const;
    bool IsMaterial() const;
    bool IsRestrictedColumn() const;
    bool IsLocalized() const;
    bool IsLegacyMapColumn() const;

    // Formulas. A refused formula leaves document, cache and dependency sets as they were.
    void GetFormula(CString& formula) const;
    /// The localized formula, or the attribute where the language has none.
    void GetFormula(CString& formula, const wchar_t* language) const;
    CTableEvaluator::EvaluateResult SetFormula(const wchar_t* formula);
    /// Validates, then stores the formula for all languages and as the localized text of language.
    /// A column that had no formula loses its cells; the empty text is no way to clear a formula
    /// (SetEmptyFormula is). 0 or the code of the check that refused it.
    CTableEvaluator::EvaluateResult SetFormula(const wchar_t* formula, const wchar_t* language);
    CTableEvaluator::EvaluateResult SetEmptyFormula();
    /// Whether the column would accept a formula: syntax, references, no cycle. Changes nothing.
    CTableEvaluator::EvaluateResult ValidateNormalFormula(const wchar_t* formula,
                                                          const CString& language);

    // Overrides: rows that hold a cell of their own for an expression column.
    bool HasExpressionColumnOverrides() const;
    /// Appends the row IDs in document order; false when there are none.
    bool GetExpressionColumnOverrides(std::vector<CString>& rowIds) const;

    // Checks over the column's values.
    /// False with the code in result at the first value that cannot be read, false at the first
    /// repeated value, else true. result is 0 unless a read failed.
    bool HasUniqueValues(CTableEvaluator::EvaluateResult& result);
    /// The formula and every distinct raw value, without empty texts; empties values first.
    void GetAllUniqueRawValues(std::set<CString>& values) const;
    /// Whether members must be rebuilt when the column changes: never for a custom column, always
    /// for a geometry or host property column, else when a dependent column needs it.
    bool ChangeInColumnCausesRefresh() const;

    // Dependencies: B depends on A when B's formula refers to A. All answers are transitive unless
    // they say "directly", visit a column once, and end on cycles.
    const std::set<CEncapFamilyColumn*>& GetDependantColumns() const;
    /// Adds this column and every column that depends on it, dependents before the columns they
    /// depend on; branches end at stopAt (null: this column).
    std::set<CEncapFamilyColumn*>& GetAllDependentColumns(std::set<CEncapFamilyColumn*>& result,
                                                          CEncapFamilyColumn* stopAt);
    /// 1 when target (null: this column) depends on this column, else 0.
    CTableEvaluator::EvaluateResult CheckCircularDependency(CEncapFamilyColumn* target) const;
    bool IsReferencedByOther() const;
    bool IsReferencedDirectlyBy(CEncapFamilyColumn* column) const;
    bool IsReferencedBy(CEncapFamilyColumn* column) const;

    /// The "Column" element.
    const XMLNode& GetXMLNode() const;

protected:
    /// Drops the cached values of a row and language, or with an empty row ID of the whole column,
    /// here and in every dependent column.
    void InvalidateCache(const CString& rowId, const CString& language);

    CEncapFamilyTable* m_table = nullptr;

private:
    friend class CEncapFamilyTable;
    friend class CTableEvaluator;
    friend struct encap::TableAccess;

    CTableEvaluator::EvaluateResult ValidateFormulaBeforeSet(const wchar_t* formula,
                                                             const CString& language);
    CTableEvaluator::EvaluateResult CheckFormula(const wchar_t* formula,
                                                 DataTypes::ColumnFormulaType kind);
    CTableEvaluator::EvaluateResult EnterFormula(const wchar_t* formula);
    void CurrentFormula(const wchar_t* language, CString& formula) const;
    void DeleteAllCells();
    bool GetOverrideRowIds(std::vector<CString>& rowIds) const;
    bool VisitOverrides(const std::function<bool(IXMLDOMNode*)>& visit) const;
    void StoreFormula(const CString& formula);
    void StoreValue(const CString& rowId, CEncapFamilyRow& row, const CString& language,
                    CString value);
    [[nodiscard]] bool IsLive() const;
    void NoteRefreshChange();
    void DropValues();
    void DropLocalizedAnswer();
    void BumpRevisionsIfRefreshing();

    XMLNode m_node;
    std::set<CEncapFamilyColumn*> m_dependents;
    std::shared_ptr<CEncapFamilyColVexilData> m_propertyData;
    std::unique_ptr<encap::ColumnState> m_state;
};
