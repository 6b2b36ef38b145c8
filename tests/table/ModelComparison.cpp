#include "tests/table/ModelComparison.h"

#include "encap/xml/XMLNodeArray.h"

#include <set>
#include <string>

namespace encap::test {

using Column = TableModel::Column;
using Row = TableModel::Row;

const Texts kLanguages{L"en", L"de", L"fr"};

namespace {

std::set<CString> Dependents(const CEncapFamilyColumn& column)
{
    std::set<CString> ids;
    for (const CEncapFamilyColumn* dependent : column.GetDependantColumns()) {
        CString id;
        dependent->GetColumnID(id);
        ids.insert(id);
    }
    return ids;
}

} // namespace

ModelComparison::ModelComparison(CEncapFamily& family, TableModel& model)
    : m_family(family), m_table(*family.GetEncapFamilyTable()), m_model(model)
{
}

CString ModelComparison::Differences()
{
    Texts columns;
    Texts rows;
    for (Row& row : m_model.rows) {
        rows.push_back(row.id);
        CompareRow(row);
    }
    for (Column& column : m_model.columns) {
        columns.push_back(column.id);
        CompareColumn(column);
    }
    Note(columns == m_table.GetAllColumnIDs(), L"column order");
    Note(rows == m_table.GetAllRowIDs(), L"row order");
    std::size_t language = 0;
    XMLParser document;
    for (int i = 0; m_family.GetStringsFamilyXML(i, document); ++i) {
        CompareStrings(kLanguages[language++], document);
    }
    return m_differences;
}

void ModelComparison::ValueDifference(const Row& row, const CString& column,
                                      const CString& language)
{
    CString text;
    const int code = m_table.GetValue(row.id.c_str(), column.c_str(), language.c_str(), text);
    const TableModel::Value expected = m_model.Read(row, column, language);
    if (code != expected.code || text != expected.text) {
        m_differences += L"value of " + row.id + L"/" + column + L" in " + language + L": " + text +
                         L"#" + std::to_wstring(code) + L", not " + expected.text + L"#" +
                         std::to_wstring(expected.code) + L"\n";
    }
}

CString ModelComparison::ValueDifferences()
{
    for (const Row& row : m_model.rows) {
        for (const Column& column : m_model.columns) {
            for (const CString& language : kLanguages) {
                ValueDifference(row, column.id, language);
            }
        }
    }
    return m_differences;
}

void ModelComparison::Note(bool same, const CString& what)
{
    if (!same) {
        m_differences += what + L"\n";
    }
}

void ModelComparison::NoteText(CString& expected, const CString& found, const CString& what)
{
    Note(m_model.Settle(expected, found), what + L": not a new stamp: " + found);
    Note(found == expected, what + L": " + found + L", not " + expected);
}

void ModelComparison::CompareRow(Row& row)
{
    const CEncapFamilyRow* live = m_table.GetFamilyRowByID(row.id.c_str());
    if (live == nullptr) {
        return Note(false, L"no row " + row.id);
    }
    Note(live->IsSuppressed() == row.suppressed, L"suppression of " + row.id);
    Note(live->GetRowState() == row.state, L"state of " + row.id);
    XMLNodeArray cells;
    live->GetXMLNode().SelectChildNodes(L"Cell", cells);
    Note(cells.size() == row.cells.size(), L"number of cells of " + row.id);
    for (XMLNode& cell : cells) {
        CString id;
        CString text;
        cell.GetProperty(L"ColumnId", id);
        cell.GetNodeText(text);
        const auto expected = row.cells.find(id);
        if (expected == row.cells.end()) {
            Note(false, L"cell " + row.id + L"/" + id);
        } else {
            NoteText(expected->second, text, L"cell " + row.id + L"/" + id);
        }
    }
}

void ModelComparison::CompareColumn(const Column& column)
{
    const CEncapFamilyColumn* live = m_table.GetFamilyColumnByID(column.id.c_str());
    if (live == nullptr) {
        return Note(false, L"no column " + column.id);
    }
    CString title;
    CString unit;
    CString formula;
    live->GetTitle(title);
    live->GetUnitType(unit);
    live->GetFormula(formula);
    Note(title == column.title && unit == column.unit && formula == column.formula &&
             live->GetDataType() == column.type && live->IsHidden() == column.hidden &&
             live->IsCustom() == column.custom && live->GetKeyWeight() == column.weight,
         L"attributes of " + column.id);
    Note(live->IsLocalized() == m_model.Localized(column), L"localization of " + column.id);
    Note(live->ChangeInColumnCausesRefresh() == m_model.CausesRefresh(column),
         L"refresh by " + column.id);
    for (const CString& language : kLanguages) {
        live->GetFormula(formula, language.c_str());
        Note(formula == m_model.FormulaIn(column, language), L"formula of " + column.id);
    }
    std::set<CString> dependents;
    for (const Column& other : m_model.columns) {
        if (other.refs.count(column.id) > 0) {
            dependents.insert(other.id);
        }
    }
    Note(Dependents(*live) == dependents, L"dependents of " + column.id);
}

void ModelComparison::CompareStrings(const CString& language, XMLParser& document)
{
    TableModel::Strings& expected = m_model.strings[language];
    XMLNodeArray cells;
    document.GetRootNode().SelectChildNodes(L"Table/ColumnStrings/Rows/CellString", cells);
    Note(cells.size() == expected.cells.size(), L"number of texts in " + language);
    for (auto& [key, text] : expected.cells) {
        CString found;
        m_family.GetLocalizedCellValue(key.first.c_str(), key.second.c_str(), language.c_str(),
                                       found);
        NoteText(text, found, language + L" text of " + key.second + L"/" + key.first);
    }
    XMLNodeArray texts;
    document.GetRootNode().SelectChildNodes(
        L"Table/ColumnStrings/Title | Table/ColumnStrings/ColumnwideValue", texts);
    Note(texts.size() == expected.texts.size(), L"number of column texts in " + language);
    for (auto& [key, text] : expected.texts) {
        CString found;
        m_family.GetLocalizedColumnPropertyValue(key.first.c_str(), key.second.c_str(),
                                                 language.c_str(), found);
        NoteText(text, found, language + L" " + key.second + L" of " + key.first);
    }
}

} // namespace encap::test
