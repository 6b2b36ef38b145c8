#include "encap/evaluation/ColumnDependencies.h"
#include "encap/evaluation/EvaluatorState.h"
#include "encap/evaluation/ValueText.h"
#include "encap/family/Vocabulary.h"
#include "encap/foundation/NullText.h"
#include "encap/foundation/RangeParser.h"
#include "encap/foundation/StringUtil.h"
#include "encap/table/FamilyColumn.h"
#include "encap/table/FamilyTable.h"
#include "encap/table/TableState.h"
#include "encap/xml/NodeAccess.h"

#include <algorithm>
#include <unordered_set>

using encap::ColumnDependencies;
using encap::EditScope;
using encap::EvaluationScope;
using encap::RowReference;
using encap::TableAccess;
using encap::TableState;
using encap::ValueCacheStore;
namespace vocabulary = encap::vocabulary;

namespace {

bool IsRevisionColumn(const CString& columnId)
{
    return encap::EqualNoCase(columnId, vocabulary::kMemberRevisionColumn.View()) ||
           encap::EqualNoCase(columnId, vocabulary::kSourceMemberRevisionColumn.View());
}

// Whether documents keep the text of a cell exactly, and no step of an evaluation changes it.
bool IsPlainText(const CString& text)
{
    const auto isPlain = [](wchar_t character) {
        return character >= L' ' && static_cast<uint32_t>(character) < 0xD800 &&
               character != L'{' && character != L'}';
    };
    return std::all_of(text.begin(), text.end(), isPlain) &&
           (text.empty() || text.find_first_not_of(L' ') != CString::npos);
}

// Whether a text is what a cell that holds it evaluates to, for sure.
bool EvaluatesToItself(const CEncapFamilyColumn& column, const CString& text,
                       bool localizesDecimals)
{
    if (!IsPlainText(text) || CRangeParser::IsRange(text) ||
        (text.empty() && column.IsLocalized())) {
        return false;
    }
    CString joined;
    switch (column.GetDataType()) {
    case DataTypes::ColumnDataTypeReal:
    case DataTypes::ColumnDataTypeInteger:
        return CStringUtil::IsNumericValue(text.c_str()) &&
               text.find_first_of(localizesDecimals ? L".," : L",") == CString::npos;
    case DataTypes::ColumnDataTypeBoolean: return CStringUtil::IsLogicalValue(text.c_str());
    default: encap::JoinTextPieces(text, joined); return joined == text;
    }
}

} // namespace

// A column without an element or a table, or deleted meanwhile, has no values.
bool CEncapFamilyColumn::IsLive() const
{
    return m_state->inTable && !m_state->removed && m_node.IsNode() && !m_state->id.empty() &&
           m_table != nullptr && TableAccess::Of(*m_table).cacheStore != nullptr;
}

CTableEvaluator::EvaluateResult
CEncapFamilyColumn::GetValue(const wchar_t* rowId, const wchar_t* language, CString& value)
{
    if (!IsLive()) {
        return CTableEvaluator::EvaluateColumnNotFound;
    }
    const EvaluationScope scope(*m_table);
    TableAccess::NoticeLocalization(*m_table);
    const RowReference row = TableAccess::FindRow(*m_table, encap::ViewOrEmpty(rowId));
    encap::LanguageReference reference{encap::ViewOrEmpty(language)};
    encap::CellEvaluator& cells = TableAccess::Evaluator(*m_table).cells;
    if (const auto known = cells.ReadAtHand(row, *this, reference, value)) {
        return *known;
    }
    const auto result = cells.Evaluate(row, *this, reference, value);
    if (result == CTableEvaluator::EvaluateUnitlessFallback) {
        // Handed out with its warning once, never served from the cache.
        TableAccess::Of(*m_table).cacheStore->Remove(row.id, m_state->cacheNumber, reference.text);
    }
    return result;
}

CTableEvaluator::EvaluateResult CEncapFamilyColumn::GetValue(const wchar_t* rowId, CString& value)
{
    return GetValue(rowId, encap::CurrentLanguage(m_table).c_str(), value);
}

void CEncapFamilyColumn::SetValue(const wchar_t* rowId, const wchar_t* language,
                                  const wchar_t* value, bool refreshCache)
{
    if (!IsLive()) {
        return;
    }
    const RowReference row = TableAccess::FindRow(*m_table, encap::ViewOrEmpty(rowId));
    if (row.entry == nullptr) {
        return;
    }
    const EditScope scope(*m_table);
    if (refreshCache) {
        InvalidateCache(row.entry->id, CString(encap::ViewOrEmpty(language)));
    }
    StoreValue(row.entry->id, *row.Row(), CString(encap::ViewOrEmpty(language)),
               CString(encap::ViewOrEmpty(value)));
    if (!IsRevisionColumn(m_state->id) && ChangeInColumnCausesRefresh()) {
        m_table->BumpMemberRevision(row.entry->id.c_str());
    }
}

// The text goes into the cache as it is, and into the document with the point as decimal mark.
void CEncapFamilyColumn::StoreValue(const CString& rowId, CEncapFamilyRow& row,
                                    const CString& language, CString value)
{
    TableState& table = TableAccess::Of(*m_table);
    ++table.editVersion;
    table.cacheStore->RemoveAllLanguages(rowId, m_state->cacheNumber);
    if (!(IsExpressionColumn() && value.empty()) && !IsMaterial()) {
        encap::LanguageReference reference{language};
        table.cacheStore->Set(rowId, m_state->cacheNumber, reference, value);
        if (value.find(L'{') != CString::npos) {
            table.cacheStore->RowCache(rowId, true)->MarkHiddenReferences();
        }
        if (!m_state->bookkeeping &&
            !EvaluatesToItself(*this, value, m_table->LocalizeDecimalSeparator())) {
            table.cacheStore->RowCache(rowId, true)->MarkTypedTexts();
        }
    }
    if (m_state->dataType == DataTypes::ColumnDataTypeReal) {
        CStringUtil::ReplaceDecimalPointOfCell(value);
    }
    m_table->SetRawValue(row, rowId, m_state->id.c_str(), language.c_str(), value.c_str());
}

void CEncapFamilyColumn::SetValue(const wchar_t* rowId, const wchar_t* value, bool refreshCache)
{
    SetValue(rowId, encap::CurrentLanguage(m_table).c_str(), value, refreshCache);
}

void CEncapFamilyColumn::ClearCachedValue(const wchar_t* rowId, const wchar_t* language)
{
    if (IsLive()) {
        const RowReference row = TableAccess::FindRow(*m_table, encap::ViewOrEmpty(rowId));
        TableAccess::Of(*m_table).cacheStore->Remove(row.id, m_state->cacheNumber,
                                                     encap::ViewOrEmpty(language));
    }
}

void CEncapFamilyColumn::ClearCachedValue(const wchar_t* rowId)
{
    if (IsLive()) {
        const RowReference row = TableAccess::FindRow(*m_table, encap::ViewOrEmpty(rowId));
        TableAccess::Of(*m_table).cacheStore->RemoveAllLanguages(row.id, m_state->cacheNumber);
    }
}

// Every language of the row goes: cells and formulas are the same in all of them.
void CEncapFamilyColumn::InvalidateCache(const CString& rowId, const CString&)
{
    if (!IsLive()) {
        return;
    }
    TableState& table = TableAccess::Of(*m_table);
    ValueCacheStore& cache = *table.cacheStore;
    ++table.editVersion;
    std::vector<uint32_t> columns;
    for (const CEncapFamilyColumn* column : ColumnDependencies::Closure(*this)) {
        columns.push_back(TableAccess::Of(*column).cacheNumber);
    }
    if (rowId.empty()) {
        table.dependenciesIncomplete ? cache.ForgetAllRows() : cache.ForgetColumns(columns);
        return;
    }
    CValueCacheLoc* row = cache.RowCache(rowId, false);
    if (row == nullptr) {
        return;
    }
    if (table.dependenciesIncomplete || row->MayHoldHiddenReferences()) {
        row->Clear();
        return;
    }
    for (const uint32_t column : columns) {
        row->RemoveColumn(column);
    }
}

bool CEncapFamilyColumn::GetOverrideRowIds(std::vector<CString>& rowIds) const
{
    const std::size_t before = rowIds.size();
    VisitOverrides([&](IXMLDOMNode* row) {
        encap::Wrap(row).GetProperty(vocabulary::kRowId, rowIds.emplace_back());
        return true;
    });
    return rowIds.size() > before;
}

// Visits the "Row" elements that hold a cell of the column until the visitor gives false; whether
// all were visited.
bool CEncapFamilyColumn::VisitOverrides(const std::function<bool(IXMLDOMNode*)>& visit) const
{
    if (m_table == nullptr) {
        return true;
    }
    IXMLDOMNode* rows = encap::FirstChildElement(encap::Raw(TableAccess::Of(*m_table).node),
                                                 vocabulary::kRows.utf8);
    for (IXMLDOMNode* row = encap::FirstChildElement(rows, vocabulary::kRow.utf8); row != nullptr;
         row = encap::NextElement(row, vocabulary::kRow.utf8)) {
        IXMLDOMNode* cell = encap::FindChildByAttribute(
            row, vocabulary::kCell.utf8, vocabulary::kColumnId.utf8, m_state->idUtf8);
        if (cell != nullptr && !visit(row)) {
            return false;
        }
    }
    return true;
}

bool CEncapFamilyColumn::HasExpressionColumnOverrides() const
{
    return m_table != nullptr && IsExpressionColumn() && !VisitOverrides([](IXMLDOMNode*) {
               return false; // one is enough
           });
}

bool CEncapFamilyColumn::GetExpressionColumnOverrides(std::vector<CString>& rowIds) const
{
    return m_table != nullptr && IsExpressionColumn() && GetOverrideRowIds(rowIds);
}

bool CEncapFamilyColumn::HasUniqueValues(CTableEvaluator::EvaluateResult& result)
{
    result = CTableEvaluator::EvaluateOK;
    if (m_table == nullptr) {
        return true;
    }
    const EvaluationScope scope(*m_table);
    std::unordered_set<CString> seen;
    const std::vector<CString> rowIds = m_table->GetAllRowIDs();
    for (const CString& rowId : rowIds) {
        CString value;
        result = GetValue(rowId.c_str(), value);
        if (result != CTableEvaluator::EvaluateOK) {
            return false;
        }
        if (m_state->columnType == ColumnTypeFileName) {
            value = encap::FoldCase(value);
        }
        if (!seen.insert(value).second) {
            return false;
        }
    }
    return true;
}

void CEncapFamilyColumn::GetAllUniqueRawValues(std::set<CString>& values) const
{
    values.clear();
    if (!m_state->formula.empty()) {
        values.insert(m_state->formula);
    }
    std::vector<CString> rowIds;
    GetOverrideRowIds(rowIds);
    for (const CString& rowId : rowIds) {
        CString value;
        m_table->GetRawValue(rowId.c_str(), m_state->id.c_str(), value);
        if (!value.empty()) {
            values.insert(value);
        }
    }
}
