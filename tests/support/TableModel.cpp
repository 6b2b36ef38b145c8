#include "tests/support/TableModel.h"

namespace encap::test {

bool SameId(const CString& left, const CString& right)
{
    const auto upper = [](wchar_t c) { return c >= L'a' && c <= L'z' ? c - L'a' + L'A' : c; };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [&](wchar_t a, wchar_t b) { return upper(a) == upper(b); });
}

bool TableModel::Localized(const Column& column) const
{
    return column.mapped || (!column.hidden && column.typed && column.type == 0);
}

void TableModel::SetValue(Row& row, Column& column, const CString& language, const CString& text)
{
    SetRaw(row, column, language, text);
    if (column.id != L"MEMBER_REVISION" && column.id != L"SOURCE_MEMBER_REVISION" &&
        CausesRefresh(column)) {
        Bump(row);
    }
}

void TableModel::SetRaw(Row& row, const Column& column, const CString& language,
                        const CString& text)
{
    Put(row.cells, column.id, text);
    if (column.id != L"MEMBER_REVISION" && column.id != L"SOURCE_MEMBER_REVISION") {
        row.state = 1;
    }
    SetLocalizedCell(column, row.id, language, text);
}

void TableModel::SetLocalizedCell(const Column& column, const CString& row, const CString& language,
                                  const CString& text)
{
    if (Localized(column) && strings.count(language) > 0) {
        Put(strings[language].cells, std::pair(column.id, row), text);
    }
}

TableModel::Row& TableModel::InsertRow(int index, const CString& id)
{
    Row& row = Insert(rows, index, Row{id, {{L"RID", id}}});
    row.state = 2;
    Bump(row);
    return row;
}

void TableModel::DeleteRow(int index)
{
    const CString id = At(rows, index).id;
    for (auto& [language, document] : strings) {
        std::erase_if(document.cells, [&](const auto& cell) { return cell.first.second == id; });
    }
    rows.erase(std::next(rows.begin(), index));
}

void TableModel::CopyRow(const Row& source, Row& copy)
{
    for (Column* column : InOrder()) {
        const auto cell = source.cells.find(column->id);
        if (SameId(column->id, L"RID") || SameId(column->id, L"STATUS") ||
            cell == source.cells.end()) {
            continue;
        }
        const Value value = Read(source, column->id, actual);
        SetValue(copy, *column, actual, HasValue(value) ? value.text : cell->second);
    }
    Bump(copy);
}

void TableModel::PasteRow(Row& target, const Row& source)
{
    for (Column* column : InOrder()) {
        if (SameId(column->id, L"RID") || SameId(column->id, L"STATUS")) {
            continue;
        }
        const Value value = Read(source, column->id, actual);
        if (HasValue(value)) {
            SetValue(target, *column, actual, value.text);
        }
    }
}

TableModel::Column& TableModel::InsertColumn(int index, Column column)
{
    Column& added = Insert(columns, index, std::move(column));
    Connect(added, added.formula);
    BuildIfIncomplete();
    for (Column& other : columns) {
        const auto refs = Tokens(other.formula);
        if (refs && std::any_of(refs->begin(), refs->end(), [&](const auto& token) {
                return token.first && SameId(token.second, added.id);
            })) {
            Connect(other, other.formula);
        }
    }
    return added;
}

void TableModel::DuplicateColumn(int index, const Column& source, const CString& id)
{
    Column copy{id, source.title, source.unit, source.formula, source.type};
    copy.custom = source.custom;
    copy.typed = source.typed;
    Column& added = InsertColumn(index, copy);
    for (Row& row : rows) {
        const auto cell = row.cells.find(source.id);
        if (cell != row.cells.end()) {
            SetValue(row, added, actual, CString(cell->second));
        }
    }
}

void TableModel::DeleteColumn(int index)
{
    Column& column = At(columns, index);
    if (CausesRefresh(column)) {
        BumpAll();
    }
    const CString id = column.id;
    for (Column& other : columns) {
        other.refs.erase(id);
        other.weight -= column.weight > 0 && other.weight > column.weight ? 1 : 0;
    }
    for (Row& row : rows) {
        row.cells.erase(id);
    }
    for (auto& [language, document] : strings) {
        const auto ofColumn = [&](const auto& item) { return item.first.first == id; };
        std::erase_if(document.cells, ofColumn);
        std::erase_if(document.texts, ofColumn);
    }
    columns.erase(std::next(columns.begin(), index));
}

int TableModel::SetFormula(Column& column, const CString& formula, const CString& language)
{
    if (FormulaIn(column, language) == formula) {
        return 0;
    }
    const int unfit = Check(column, formula);
    if (unfit != 0) {
        return unfit;
    }
    const std::set<CString> before = column.refs;
    Connect(column, formula);
    if (Reaches(column.id, column.id)) {
        column.refs = before;
        return 1;
    }
    if (column.formula.empty()) {
        for (Row& row : rows) {
            row.cells.erase(column.id);
        }
        std::erase_if(strings[actual].cells,
                      [&](const auto& cell) { return cell.first.first == column.id; });
    }
    Store(column, formula);
    if (CausesRefresh(column)) {
        BumpAll();
    }
    if (Localized(column)) {
        SetText(column.id, L"ColumnwideValue", formula, language);
    }
    return 0;
}

void TableModel::SetEmptyFormula(Column& column)
{
    SetCustom(column, false);
    if (column.formula.empty()) {
        return;
    }
    Store(column, L"");
    column.refs.clear();
    for (auto& [language, document] : strings) {
        if (Localized(column)) {
            document.texts.erase({column.id, L"ColumnwideValue"});
        }
    }
    if (CausesRefresh(column)) {
        BumpAll();
    }
}

void TableModel::SetCustom(Column& column, bool custom)
{
    if (column.custom != custom) {
        column.custom = custom;
        if (CausesRefresh(column)) {
            BumpAll();
        }
    }
}

void TableModel::SetText(const CString& column, const CString& property, const CString& text,
                         const CString& language)
{
    if (strings.count(language) > 0) {
        Put(strings[language].texts, std::pair(column, property), text);
    }
}

void TableModel::BumpAll()
{
    if (Column* revisions = RevisionColumn()) {
        const CString stamp = Unknown();
        for (Row& row : rows) {
            SetRaw(row, *revisions, actual, stamp);
        }
    }
}

void TableModel::Reopen()
{
    for (Row& row : rows) {
        row.state = 0;
        row.suppressed =
            row.cells.count(L"STATUS") > 0 && SameId(row.cells[L"STATUS"], L"Suppressed");
    }
    for (Column& column : columns) {
        column.geometry = false;
        column.refs.clear();
    }
    incomplete = false;
    Build();
}

bool TableModel::CausesRefresh(const Column& column)
{
    std::set<CString> seen;
    return CausesRefresh(column, seen);
}

bool TableModel::Reaches(const CString& columnId, const CString& target)
{
    std::set<CString> seen;
    return Reaches(columnId, target, seen);
}

bool TableModel::Settle(CString& text, const CString& found)
{
    for (std::size_t start = text.find(L'<'); start != CString::npos; start = text.find(L'<')) {
        const CString key = text.substr(start, text.find(L'>') - start + 1);
        if (m_settled.count(key) == 0) {
            constexpr std::size_t kGuidLength = 36;
            const CString guid = found.substr(std::min(start, found.size()), kGuidLength);
            if (guid.size() != kGuidLength || !m_stamps.insert(guid).second) {
                return false;
            }
            m_settled[key] = guid;
        }
        text.replace(start, key.size(), m_settled[key]);
    }
    return true;
}

std::vector<TableModel::Column*> TableModel::InOrder()
{
    std::vector<Column*> order;
    for (Column& column : columns) {
        order.push_back(&column);
    }
    return order;
}

int TableModel::Connect(Column& column, const CString& formula)
{
    const auto tokens = Tokens(formula);
    if (!tokens) {
        return 2;
    }
    std::set<CString> refs;
    for (const auto& [isReference, text] : *tokens) {
        const Column* referenced = isReference ? Find(columns, text) : nullptr;
        if (isReference && referenced == nullptr) {
            return 5;
        }
        if (isReference) {
            refs.insert(referenced->id);
        }
    }
    column.refs = refs;
    return 0;
}

void TableModel::Build()
{
    for (Column& column : columns) {
        if (!column.formula.empty() && Connect(column, column.formula) != 0) {
            incomplete = true;
            return;
        }
    }
}

void TableModel::Store(Column& column, const CString& formula)
{
    column.formula = formula;
    BuildIfIncomplete();
}

void TableModel::BuildIfIncomplete()
{
    if (incomplete) {
        incomplete = false;
        Build();
    }
}

bool TableModel::Reaches(const CString& from, const CString& target, std::set<CString>& seen)
{
    return std::any_of(columns.begin(), columns.end(), [&](const Column& dependent) {
        return dependent.refs.count(from) > 0 &&
               (dependent.id == target ||
                (seen.insert(dependent.id).second && Reaches(dependent.id, target, seen)));
    });
}

bool TableModel::CausesRefresh(const Column& column, std::set<CString>& seen)
{
    if (column.custom || column.geometry || !seen.insert(column.id).second) {
        return !column.custom && column.geometry;
    }
    return std::any_of(columns.begin(), columns.end(), [&](const Column& dependent) {
        return dependent.refs.count(column.id) > 0 && CausesRefresh(dependent, seen);
    });
}

void TableModel::Bump(Row& row)
{
    if (Column* revisions = RevisionColumn()) {
        SetRaw(row, *revisions, actual, Unknown());
    }
}

TableModel::Column* TableModel::RevisionColumn()
{
    Column* revisions = Find(columns, L"MEMBER_REVISION");
    const bool missing = copied && Find(columns, L"SOURCE_MEMBER_REVISION") == nullptr;
    return revisions != nullptr && missing && !KeepSourceRevisions(*revisions) ? nullptr
                                                                               : revisions;
}

bool TableModel::KeepSourceRevisions(const Column& revisions)
{
    Column column{L"SOURCE_MEMBER_REVISION", L"", L"", revisions.formula};
    column.hidden = true;
    Column& added = InsertColumn(static_cast<int>(columns.size()), column);
    for (Row& row : rows) {
        const Value value = Read(row, revisions.id, actual);
        if (value.code != 0) {
            return false;
        }
        SetRaw(row, added, actual, value.text);
    }
    return true;
}

} // namespace encap::test
