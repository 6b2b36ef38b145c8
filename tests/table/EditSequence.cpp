#include "tests/table/EditSequence.h"

#include "tests/support/FamilyBuilder.h"

#include <algorithm>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace encap::test {

using Column = TableModel::Column;
using Row = TableModel::Row;

Saved Save(CEncapFamily& family)
{
    Saved saved;
    family.GetFamilyXML().GetXml(saved.family);
    XMLParser document;
    for (int i = 0; family.GetStringsFamilyXML(i, document); ++i) {
        document.GetXml(saved.strings.emplace_back());
    }
    return saved;
}

EditSequence::EditSequence(uint32_t seed)
    : EditSequence(
          [random = std::mt19937(seed)]() mutable { return static_cast<uint32_t>(random()); })
{
}

EditSequence::EditSequence(std::function<uint32_t()> next) : m_next(std::move(next))
{
    TableModel::Strings none;
    m_model.strings = {{L"en", none}, {L"de", none}};
    m_model.actual = L"en";
    FamilyBuilder builder;
    const std::vector<Column> columns{{L"RID"},
                                      {L"STATUS"},
                                      {L"A", L"", L"", L"", 1},
                                      {L"B", L"", L"", L"", 1},
                                      {L"N", L"", L"", L"", 2},
                                      {L"P", L"", L"", L"", 1},
                                      {L"T"},
                                      {L"U"}};
    for (Column column : columns) {
        column.title = column.id;
        column.mapped = column.id == L"P";
        m_model.columns.push_back(column);
    }
    if (Chance(2)) {
        m_model.columns.push_back({L"MEMBER_REVISION", L"MEMBER_REVISION"});
    }
    for (const Column& column : m_model.columns) {
        const Texts words{L"string", L"double", L"integer"};
        builder.Column({column.id, words[static_cast<std::size_t>(column.type)]});
    }
    for (const wchar_t* id : {L"r1", L"r2", L"r3"}) {
        m_model.rows.push_back({id, {{L"RID", id}, {L"A", L"1"}, {L"T", L"q"}}});
        builder.Row(id, {{L"RID", id}, {L"A", L"1"}, {L"T", L"q"}});
    }
    builder.Supplies(L"P", L"local")
        .Beside(L"<Categories><Category InternalName='c' Hidden='false'><CategoryParameter "
                L"InternalName='local' ValueLocalized='true'/></Category></Categories>");
    if (Chance(3)) {
        m_folder = std::make_unique<TemporaryFolder>();
    }
    m_saved = {builder.Xml(), {L"<S xml:lang='en'/>", L"<S xml:lang='de'/>"}};
    Open();
    m_saved = Save(*m_family);
    m_undo = {m_saved, m_model};
}

CString EditSequence::Step()
{
    const bool refused = Edit();
    ModelComparison comparison(*m_family, m_model);
    CString differences = comparison.Differences();
    const Saved saved = Save(*m_family);
    if (refused && saved != m_saved) {
        differences += L"a refused edit changed the documents\n";
    }
    m_saved = saved;
    TableModel loaded = m_model;
    loaded.Reopen();
    const auto fresh = Family(L"");
    ModelComparison reloaded(*fresh, loaded);
    reloaded.Differences();
    const CString unlike = reloaded.ValueDifferences();
    differences += unlike.empty() ? L"" : L"re-opened: " + unlike;
    // Some reads only, so that edits meet caches in every state.
    ModelComparison reads(*m_family, m_model);
    if (Chance(4)) {
        return differences + reads.ValueDifferences();
    }
    for (int count = Below(6); count > 0 && !m_model.rows.empty(); --count) {
        reads.ValueDifference(AnyRow(), AnyColumn().id, AnyLanguage());
    }
    return differences + reads.Found();
}

int EditSequence::Below(int limit)
{
    return static_cast<int>(m_next() % static_cast<uint32_t>(std::max(limit, 1)));
}

CString EditSequence::OneOf(const Texts& texts)
{
    return texts[static_cast<std::size_t>(Below(static_cast<int>(texts.size())))];
}

CString EditSequence::Spelled(CString id)
{
    if (Chance(5)) {
        for (wchar_t& c : id) {
            c = c >= L'a' && c <= L'z'   ? static_cast<wchar_t>(c - 32)
                : c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + 32)
                                         : c;
        }
    }
    return id;
}

CString EditSequence::Term(bool number)
{
    if (Chance(3)) {
        return number ? OneOf({L"1", L"2", L"7"}) : OneOf({L"q", L"k", L"4"});
    }
    return L"{" + (Chance(20) ? CString(L"X1") : Spelled(AnyColumn().id)) + L"}";
}

CString EditSequence::Formula(const Column& column)
{
    const CString first = Term(column.type != 0);
    switch (Below(column.custom ? 6 : 12)) {
    case 0: return L"{A";
    case 1: return first + L"+{B}}";
    case 2:
    case 3:
        return L"[" + first + L";9;" + OneOf({L"", L"2", L"9"}) + L";" + OneOf({L"", L"5"}) + L"]";
    case 4: return first + L" & " + Term(false);
    default: return first + (column.type != 0 ? L"+" : L"&") + Term(column.type != 0);
    }
}

CString EditSequence::CellText(const Column& column)
{
    const bool own = column.id.find(L"REVISION") == CString::npos && Chance(4);
    return own                ? Formula(column)
           : Chance(5)        ? CString()
           : column.type != 0 ? OneOf({L"1", L"2", L"30", L"2", L"z"})
                              : OneOf({L"q", L"kz", L"8"});
}

CEncapFamilyColumn& EditSequence::Live(const Column& column)
{
    return *Table().GetFamilyColumnByID(Spelled(column.id).c_str());
}

std::unique_ptr<CEncapFamily> EditSequence::Family(const CString& folder)
{
    return std::make_unique<CEncapFamily>(m_saved.family.c_str(), m_saved.strings, folder.c_str(),
                                          &m_host, false);
}

void EditSequence::Open()
{
    m_family = Family(m_folder != nullptr ? m_folder->File(L"") : CString());
    m_model.Reopen();
}

bool EditSequence::Edit()
{
    switch (Below(32)) {
    case 0:
    case 1: return InsertRow();
    case 2: return DeleteRow();
    case 3: return CopyRow();
    case 4:
    case 5: return PasteRow();
    case 6:
    case 7: return MoveItem();
    case 8:
    case 9: return InsertColumn();
    case 10: return DuplicateColumn();
    case 11: return DeleteColumn();
    case 12:
    case 13:
    case 14: return SetAttribute();
    case 15: return SetStatus();
    case 16: return Reopen();
    case 17: return Undo();
    case 18: return SetLocalized();
    case 19: return SetFamilyThings();
    case 20:
    case 21: return Refused();
    case 22:
    case 23:
    case 24:
    case 25:
    case 26: return SetFormula();
    default: return SetValue();
    }
}

bool EditSequence::InsertRow()
{
    const int index = AnyIndex(RowCount());
    CString id = Chance(3) ? CString() : L"r" + std::to_wstring(1 + Below(9));
    if (RowCount() > 7 || (!id.empty() && TableModel::Find(m_model.rows, id) != nullptr)) {
        return true;
    }
    Log(L"insert row " + id + L" at " + std::to_wstring(index));
    Table().InsertNewRow(index, id)->GetRowID(id);
    m_model.InsertRow(index, id);
    return false;
}

bool EditSequence::DeleteRow()
{
    const int index = Below(RowCount());
    Log(L"delete row at " + std::to_wstring(index));
    if (Table().DeleteRow(index)) {
        m_model.DeleteRow(index);
    }
    return false;
}

bool EditSequence::CopyRow()
{
    if (RowCount() == 0 || RowCount() > 7) {
        return true;
    }
    const Row& source = AnyRow();
    Log(L"copy row " + source.id);
    CString id;
    Table().CopyRow(Spelled(source.id))->GetRowID(id);
    Row& copy = m_model.InsertRow(RowCount(), id);
    m_model.CopyRow(source, copy);
    ForgetEmptyCells(copy);
    return false;
}

bool EditSequence::PasteRow()
{
    if (RowCount() == 0) {
        return true;
    }
    const int target = Below(RowCount());
    const int source = Below(RowCount());
    Log(L"paste row " + std::to_wstring(source) + L" into " + std::to_wstring(target));
    Table().PasteRow(target, source);
    m_model.PasteRow(TableModel::At(m_model.rows, target), TableModel::At(m_model.rows, source));
    ForgetEmptyCells(TableModel::At(m_model.rows, target));
    return false;
}

void EditSequence::ForgetEmptyCells(const Row& row)
{
    for (const Column& column : m_model.columns) {
        if (row.cells.count(column.id) == 0) {
            Live(column).ClearCachedValue(row.id.c_str());
        }
    }
}

bool EditSequence::MoveItem()
{
    int index = AnyIndex(RowCount());
    int expected = index;
    if (RowCount() > 0 && Chance(2)) {
        const int from = Below(RowCount());
        const CString id = Table().GetRowIDByIndex(from);
        Log(L"move row " + id + L" to " + std::to_wstring(index));
        Table().ChangeRowIndex(id.c_str(), index);
        TableModel::Move(m_model.rows, from, expected);
    } else {
        // The row's ID and status stay first, where UserColumn expects them.
        const int from = 2 + Below(ColumnCount() - 2);
        expected = index = 2 + Below(ColumnCount());
        const CString id = Table().GetFamilyColumnIDByIndex(from);
        Log(L"move column " + id + L" to " + std::to_wstring(index));
        Table().ChangeColumnIndex(id.c_str(), index);
        TableModel::Move(m_model.columns, from, expected);
    }
    EXPECT_EQ(index, expected);
    return false;
}

bool EditSequence::InsertColumn()
{
    const CString id = OneOf({L"X1", L"x1", L"X2", L"A", L"b", L"MEMBER_REVISION"});
    const int index = 2 + Below(ColumnCount());
    const bool refused = TableModel::Find(m_model.columns, id) != nullptr;
    Log(L"insert column " + id + L" at " + std::to_wstring(index));
    EXPECT_EQ(Table().InsertNewColumn(index, id.c_str()) == nullptr, refused);
    if (!refused) {
        m_model.InsertColumn(index, {id, id}).typed = false;
    }
    return refused;
}

bool EditSequence::DuplicateColumn()
{
    const CString id = OneOf({L"X1", L"X2", L"X3", L"1X", L"", L"X 3", L"a"});
    const Column& source = UserColumn();
    const int index = 2 + Below(ColumnCount());
    const bool refused = TableModel::Find(m_model.columns, id) != nullptr || id.empty() ||
                         id == L"1X" || id == L"X 3" || ColumnCount() > 12;
    Log(L"duplicate column " + source.id + L" as " + id + L" at " + std::to_wstring(index));
    if (ColumnCount() <= 12) {
        EXPECT_EQ(Table().DuplicateColumn(index, Spelled(source.id).c_str(), id.c_str()) == nullptr,
                  refused);
    }
    if (!refused) {
        m_model.DuplicateColumn(index, source, id);
    }
    return refused;
}

bool EditSequence::DeleteColumn()
{
    if (ColumnCount() < 6) {
        return true;
    }
    const int index = 2 + Below(ColumnCount() - 2);
    Log(L"delete column " + Table().GetFamilyColumnIDByIndex(index));
    EXPECT_TRUE(Table().DeleteColumn(index));
    m_model.DeleteColumn(index);
    return false;
}

bool EditSequence::SetAttribute()
{
    Column& column = UserColumn();
    CEncapFamilyColumn& live = Live(column);
    const int number = Below(3);
    constexpr int kTypeAttribute = 3;
    // Stamps are served as they were set, which as texts is their value too.
    const bool isStamp = column.id.find(L"REVISION") != CString::npos;
    const int drawn = Below(8);
    const int kind = drawn == kTypeAttribute && isStamp ? 0 : drawn;
    Log(L"attribute " + std::to_wstring(kind) + L" of " + column.id + L" to " +
        std::to_wstring(number));
    switch (kind) {
    case 0:
        live.SetIsHidden(number > 0);
        column.hidden = number > 0;
        break;
    case 1:
        live.SetIsCustom(number > 0);
        m_model.SetCustom(column, number > 0);
        break;
    case 2:
        column.unit = OneOf({L"", L"ul", L"bad"});
        live.SetUnitType(column.unit.c_str());
        break;
    case kTypeAttribute:
        column.type = number;
        column.typed = true;
        Table().SetColumnDataType(column.id.c_str(),
                                  static_cast<DataTypes::ColumnDataType>(number));
        break;
    case 4:
        column.weight = number;
        live.SetKeyWeight(number);
        break;
    case 5:
        column.title = OneOf({L"", L"<\"&'\n>", L"\x00e9"});
        live.SetTitle(column.title.c_str());
        break;
    case 6:
        live.SetIsGeometryColumn(number > 0);
        column.geometry = number > 0;
        break;
    default: live.SetEmptyFormula(); m_model.SetEmptyFormula(column);
    }
    return false;
}

bool EditSequence::SetStatus()
{
    if (RowCount() == 0) {
        return true;
    }
    const int index = Below(RowCount());
    const CString status = OneOf({L"Suppressed", L"SUPPRESSED", L"Visible", L""});
    Log(L"status of row " + std::to_wstring(index) + L" to " + status);
    Table().SetStatusColValue(index, status.c_str());
    Row& row = TableModel::At(m_model.rows, index);
    m_model.SetRaw(row, TableModel::At(m_model.columns, 1), m_model.actual, status);
    row.suppressed = SameId(status, L"Suppressed");
    return false;
}

bool EditSequence::Reopen()
{
    Log(L"re-open");
    m_undo = {m_saved, m_model};
    m_family.reset();
    Open();
    return true;
}

bool EditSequence::Undo()
{
    Log(L"undo");
    m_family.reset();
    if (m_folder != nullptr) {
        m_folder = std::make_unique<TemporaryFolder>();
    }
    std::tie(m_saved, m_model) = m_undo;
    Open();
    return true;
}

bool EditSequence::SetLocalized()
{
    const Column& column = UserColumn();
    const CString language = AnyLanguage();
    const CString text = OneOf({L"", L"q", L"1"});
    if (Chance(2) || RowCount() == 0) {
        Log(L"title of " + column.id + L" in " + language + L": " + text);
        Live(column).SetTitle(text.c_str(), language.c_str());
        m_model.SetText(column.id, L"Title", text, language);
        return false;
    }
    const Row& row = AnyRow();
    Log(L"localized cell " + row.id + L"/" + column.id + L" in " + language + L": " + text);
    m_family->SetLocalizedCellValue(column.id.c_str(), row.id.c_str(), text.c_str(),
                                    language.c_str());
    m_model.SetLocalizedCell(column, row.id, language, text);
    return false;
}

bool EditSequence::SetFamilyThings()
{
    if (Chance(4)) {
        m_model.copied = Chance(2);
        Log(m_model.copied ? L"a copied family" : L"no copied family");
        m_family->SetCopyFrom(m_model.copied ? L"lib" : L"");
    } else {
        Log(L"bump all revisions");
        Table().BumpAllMemberRevisions(nullptr);
        m_model.BumpAll();
    }
    return false;
}

bool EditSequence::SetFormula()
{
    Column& column = UserColumn();
    const bool constant = column.id.find(L"REVISION") != CString::npos;
    const CString formula = constant ? CString(L"m") : Formula(column);
    const CString language = AnyLanguage();
    const int result = Live(column).SetFormula(formula.c_str(), language.c_str());
    Log(L"formula of " + column.id + L" in " + language + L": " + formula + L" gives " +
        std::to_wstring(result));
    EXPECT_EQ(result, m_model.SetFormula(column, formula, language));
    return result != 0;
}

bool EditSequence::SetValue()
{
    if (RowCount() == 0) {
        return true;
    }
    const int index = Below(RowCount());
    Row& row = TableModel::At(m_model.rows, index);
    Column& column = UserColumn();
    const CString language = Chance(2) ? m_model.actual : AnyLanguage();
    const CString text = CellText(column);
    Log(L"value of " + row.id + L"/" + column.id + L" in " + language + L": " + text);
    if (language == m_model.actual && Chance(2)) {
        Table().SetValue(index, column.id.c_str(), text.c_str(), true);
    } else {
        Table().SetValue(Spelled(row.id).c_str(), Spelled(column.id).c_str(), language.c_str(),
                         text.c_str(), true);
    }
    // Until it is cleared, the text may be served as it was set.
    m_model.SetValue(row, column, language, text);
    Live(column).ClearCachedValue(Spelled(row.id).c_str());
    return false;
}

bool EditSequence::Refused()
{
    Column& column = UserColumn();
    int index = 1;
    const CString formula = Formula(column);
    Log(L"refused edits, and a check of " + formula + L" in " + column.id);
    EXPECT_FALSE(Table().DeleteRow(RowCount()) || Table().DeleteRow(-1));
    EXPECT_FALSE(Table().DeleteColumn(ColumnCount()) || Table().DeleteColumn(-1));
    EXPECT_FALSE(Table().PasteRow(0, RowCount()) || Table().PasteRow(-1, 0));
    EXPECT_EQ(Table().CopyRow(L"nobody"), nullptr);
    EXPECT_EQ(Table().DuplicateColumn(0, L"nothing", L"Y"), nullptr);
    Table().ChangeRowIndex(L"nobody", index);
    Table().ChangeColumnIndex(L"nothing", index);
    EXPECT_EQ(index, 1);
    Table().SetValue(L"nobody", column.id.c_str(), L"1", true);
    Table().SetValue(L"r1", L"nothing", L"1", true);
    Table().SetValue(RowCount(), column.id.c_str(), L"1", true);
    Table().SetStatusColValue(-1, L"Suppressed");
    Table().SetColumnDataType(L"nothing", DataTypes::ColumnDataTypeReal);
    Table().ClearCachedValue(L"nobody", column.id.c_str());
    Table().IsFormulaValid(column.id.c_str(), formula.c_str());
    Column normal = column;
    normal.custom = false;
    const int unfit = m_model.Check(normal, formula);
    const int valid = Live(column).ValidateNormalFormula(formula.c_str(), L"");
    EXPECT_TRUE(valid == unfit || (unfit == 0 && valid == 1)) << valid << " " << unfit;
    return true;
}

} // namespace encap::test
