#pragma once

#include "encap/evaluation/TableEvaluator.h"
#include "encap/evaluation/Tokens.h"
#include "encap/foundation/DataTypes.h"
#include "encap/table/FamilyColumn.h"
#include "encap/table/FamilyRow.h"
#include "encap/table/FamilyTable.h"
#include "encap/table/IdTable.h"
#include "encap/table/ValueCacheStore.h"
#include "encap/xml/XMLNode.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace encap {

struct EvaluatorState;

/// The status word of a suppressed member, in any case.
inline constexpr std::wstring_view kSuppressedStatus = L"Suppressed";

/// The columns whose cells hold text of the row's own, read as it stands: the row's ID and status.
[[nodiscard]] bool IsRowBookkeeping(std::wstring_view columnId);

/// The language used where none is named; empty without a table.
[[nodiscard]] CString CurrentLanguage(const CEncapFamilyTable* table);

/// What a column keeps in memory beside its element.
struct ColumnState {
    // The attributes of the element.
    CString id;
    CString title;
    CString unit;
    CString formula;
    DataTypes::ColumnDataType dataType = DataTypes::ColumnDataTypeReal;
    bool custom = false;
    bool hidden = false;
    int32_t keyWeight = 0;

    // Flags that live in memory only.
    CEncapFamilyColumn::ColumnType columnType = CEncapFamilyColumn::ColumnTypeOrdinary;
    bool geometry = false;
    bool hostProperty = false;
    bool property = false;
    bool status = false;

    // Beside the dependents: the columns that this column's formula refers to.
    std::vector<CEncapFamilyColumn*> references;
    bool namesUnknown = false; ///< the formula names columns that the table does not have

    // Kept for speed.
    std::string idUtf8;                      ///< the ID as the document holds it
    bool bookkeeping = false;                ///< the row's own ID or status
    uint32_t cacheNumber = 0;                ///< the column's number in the value cache
    std::shared_ptr<const TokenList> tokens; ///< of the formula; null until first needed
    uint64_t localizedVersion = 0;           ///< of the mapping's answers; 0: not asked yet
    bool localized = false;
    uint64_t refreshVersion = 0; ///< of the table's graph; 0: not asked yet
    bool causesRefresh = false;

    // Marks of walks and evaluations.
    uint64_t walk = 0;
    uint32_t visiting = 0; ///< how many of its cells are being evaluated
    bool inTable = false;  ///< a column of its table, not a copy of one
    bool removed = false;  ///< deleted from the table, kept for a caller
};

/// The cells of the row that was read last, by column number: a row's cells are mostly read one
/// after the other. Notices every edit of the document.
class RowCellIndex {
public:
    /// The row's first cell of the column; null when there is none.
    [[nodiscard]] IXMLDOMNode* Find(const XMLNode& row, const ColumnState& column,
                                    ValueCacheStore& numbers);

private:
    void Build(const XMLNode& row, ValueCacheStore& numbers);
    [[nodiscard]] uint32_t NumberOf(std::size_t place, std::string_view columnId,
                                    ValueCacheStore& numbers);

    IXMLDOMNode* m_row = nullptr;
    uint64_t m_changes = 0;
    std::vector<IXMLDOMNode*> m_cells;   ///< by column number
    std::vector<uint32_t> m_lastNumbers; ///< of the cells in order: rows are mostly built alike
};

/// What a table keeps in memory beside its element.
struct TableState {
    using ColumnEntry = IdTable<CEncapFamilyColumn>::Entry;
    using RowEntry = IdTable<CEncapFamilyRow>::Entry;

    XMLNode node;
    CEncapFamily* family = nullptr;
    std::unique_ptr<CTableEvaluator> evaluator;
    std::unique_ptr<ValueCacheStore> cacheStore;
    IdTable<CEncapFamilyColumn> columns;
    IdTable<CEncapFamilyRow> rows;
    CString statusColumnId;
    std::map<CString, CString> rangeColumnValues;
    RowCellIndex rowCells;

    /// A formula could not be read when the dependencies were built: what depends on what is not
    /// fully known, so every change drops whole rows from the cache.
    bool dependenciesIncomplete = false;
    uint64_t graphVersion = 1;     ///< counts changes of dependencies and of what decides a refresh
    uint64_t structureVersion = 1; ///< counts columns that come or go
    uint64_t editVersion = 1;      ///< counts edits that may change a value
    uint64_t walk = 0;             ///< the mark of the latest walk over the columns
    uint64_t localizationVersion = 0; ///< of the mapping's answers, when last looked at
    bool bumpingRevisions = false;
    bool loading = false;

    // A host call may delete what the evaluation around it still uses: it is kept until then.
    int evaluations = 0;
    std::vector<std::unique_ptr<ColumnEntry>> removedColumns;
    std::vector<std::unique_ptr<RowEntry>> removedRows;
};

/// A row as evaluation sees it: its ID in the table's own spelling, and its object; null for an ID
/// that the table does not have.
struct RowReference {
    std::wstring_view id;
    const TableState::RowEntry* entry = nullptr;

    [[nodiscard]] CEncapFamilyRow* Row() const
    {
        return entry != nullptr ? entry->object.get() : nullptr;
    }
};

/// While it lives, columns and rows that are deleted stay in memory.
class EvaluationScope {
public:
    explicit EvaluationScope(const CEncapFamilyTable& table);
    ~EvaluationScope();
    EvaluationScope(const EvaluationScope&) = delete;
    EvaluationScope& operator=(const EvaluationScope&) = delete;

protected:
    TableState& m_state;
};

/// The same around an edit. When an exception ends it, nothing that is kept beside the document is
/// relied on any longer.
class EditScope : public EvaluationScope {
public:
    explicit EditScope(const CEncapFamilyTable& table);
    ~EditScope();
    EditScope(const EditScope&) = delete;
    EditScope& operator=(const EditScope&) = delete;

private:
    int m_exceptions; ///< in flight when it began
};

/// The door for the library's own sources to what tables, columns and rows keep to themselves.
struct TableAccess {
    static TableState& Of(const CEncapFamilyTable& table) { return *table.m_state; }
    static ColumnState& Of(CEncapFamilyColumn& column) { return *column.m_state; }
    static const ColumnState& Of(const CEncapFamilyColumn& column) { return *column.m_state; }
    static std::set<CEncapFamilyColumn*>& Dependents(CEncapFamilyColumn& column)
    {
        return column.m_dependents;
    }
    static const std::set<CEncapFamilyColumn*>& Dependents(const CEncapFamilyColumn& column)
    {
        return column.m_dependents;
    }
    static CEncapFamilyTable* Table(const CEncapFamilyColumn& column) { return column.m_table; }
    static EvaluatorState& Evaluator(const CEncapFamilyTable& table)
    {
        return *table.m_state->evaluator->m_state;
    }

    /// The row of an ID, in the table's spelling of it.
    static RowReference FindRow(const CEncapFamilyTable& table, std::wstring_view rowId);
    /// The row's first cell of a column, by the column's exact UTF-8 ID; null when there is none.
    static IXMLDOMNode* FindCell(const CEncapFamilyRow& row, std::string_view columnId);
    /// The raw text of that cell; false, with text as it was, when there is none.
    static bool ReadCell(const CEncapFamilyRow& row, std::string_view columnId, CString& text);
    /// The same for a column of the table, quick for the cells of one row in turn.
    static bool ReadCell(CEncapFamilyTable& table, const CEncapFamilyRow& row,
                         const ColumnState& column, CString& text);
    /// Removes that cell; false when there is none.
    static bool RemoveCell(const CEncapFamilyRow& row, std::string_view columnId);
    /// Drops the values of columns whose texts have moved to or from the strings documents since
    /// the last call.
    static void NoticeLocalization(const CEncapFamilyTable& table);
    /// Whether the column's texts come from the strings documents first.
    static bool IsLocalized(const CEncapFamilyTable& table, ColumnState& column);
};

} // namespace encap
