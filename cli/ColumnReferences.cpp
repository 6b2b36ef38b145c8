#include "cli/ColumnReferences.h"

#include "cli/ColumnFacts.h"
#include "cli/FamilyEdit.h"
#include "cli/FormulaFault.h"
#include "cli/FormulaText.h"
#include "cli/NodeReads.h"
#include "encap/foundation/CaseFolding.h"
#include "encap/foundation/TextFormat.h"
#include "encap/table/FamilyTable.h"
#include "encap/xml/XMLNodeArray.h"

#include <algorithm>

namespace encap::cli {
namespace {

/// A text of a document that is evaluated: an attribute, or an element's text.
struct FormulaPlace {
    XMLNode node;
    const wchar_t* attribute; ///< null: the element's text
    CString column;           ///< whose values it gives
    CString where;            ///< "column V", "row r1, column V in de"

    [[nodiscard]] CString Text() const
    {
        CString text;
        attribute != nullptr ? node.GetProperty(attribute, text) : node.GetNodeText(text);
        return text;
    }
    void SetText(const CString& text)
    {
        attribute != nullptr ? node.SetProperty(attribute, text) : node.SetNodeText(text);
    }
};

/// The texts that refer to a column.
class Places {
public:
    Places(FamilyEdit& edit, CString columnId) : m_columnId(std::move(columnId))
    {
        AddFamily(edit.Documents().front().Document().GetRootNode());
        for (std::size_t i = 1; i < edit.Documents().size(); ++i) {
            AddStrings(edit.Documents()[i].Document().GetRootNode());
        }
    }
    std::vector<FormulaPlace> found;

private:
    void Add(FormulaPlace place)
    {
        const std::vector<CString> references = ReferencesOf(place.Text());
        if (std::any_of(references.begin(), references.end(),
                        [this](const CString& id) { return EqualNoCase(id, m_columnId); })) {
            found.push_back(std::move(place));
        }
    }
    /// The cells of these columns are shown as they stand.
    static bool IsEvaluated(const CString& columnId)
    {
        return !EqualNoCase(columnId, L"RID") && !EqualNoCase(columnId, L"STATUS");
    }
    void AddFamily(const XMLNode& root)
    {
        for (const XMLNode& column : Selected(root, L"FamilyTable/Columns/Column")) {
            const CString id = PropertyOf(column, L"ColumnId");
            Add({column, L"ColumnwideValue", id, L"column " + id});
        }
        for (const XMLNode& row : Selected(root, L"FamilyTable/Rows/Row")) {
            const CString where = L"row " + PropertyOf(row, L"RowId") + L", column ";
            for (const XMLNode& cell : Selected(row, L"Cell")) {
                const CString id = PropertyOf(cell, L"ColumnId");
                if (IsEvaluated(id)) {
                    Add({cell, nullptr, id, where + id});
                }
            }
        }
    }
    void AddStrings(const XMLNode& root)
    {
        const CString language = L" in " + PropertyOf(root, L"xml:lang");
        for (const XMLNode& strings : Selected(root, L"Table/ColumnStrings")) {
            const CString id = PropertyOf(strings, L"ColumnId");
            CString where = L"column ";
            where.append(id).append(language);
            for (const XMLNode& formula : Selected(strings, L"ColumnwideValue")) {
                Add({formula, nullptr, id, where});
            }
            for (const XMLNode& cell : Selected(strings, L"Rows/CellString")) {
                if (IsEvaluated(id)) {
                    Add({cell, nullptr, id, L"row " + PropertyOf(cell, L"RowId") + L", " + where});
                }
            }
        }
    }

    CString m_columnId;
};

struct Value {
    CTableEvaluator::EvaluateResult result = CTableEvaluator::EvaluateOK;
    CString text;
    bool operator==(const Value&) const = default;
};

std::vector<CString> LanguagesOf(const FamilyFile& file)
{
    return file.Strings().empty() ? std::vector<CString>(1) : file.Languages();
}

/// Of all cells in all languages: by language, column and row.
std::vector<Value> ValuesOf(const CEncapFamilyTable& table, const std::vector<CString>& languages)
{
    std::vector<Value> values;
    for (const CString& language : languages) {
        for (CEncapFamilyColumn* column : ColumnsOf(table)) {
            for (const CString& row : table.GetAllRowIDs()) {
                Value& value = values.emplace_back();
                value.result = column->GetValue(row.c_str(), language.c_str(), value.text);
            }
        }
    }
    return values;
}

/// The attributes by which elements name a column, as far as they name one of these IDs.
struct IdPlace {
    XMLNode node;
    const wchar_t* attribute;
};

std::vector<IdPlace> PlacesOfId(FamilyEdit& edit, const CString& id, bool ignoresCase)
{
    std::vector<IdPlace> places;
    const auto add = [&](const XMLNode& root, const wchar_t* path, const wchar_t* attribute) {
        for (const XMLNode& node : Selected(root, path)) {
            const CString value = PropertyOf(node, attribute);
            if (value == id || (ignoresCase && EqualNoCase(value, id))) {
                places.push_back({node, attribute});
            }
        }
    };
    const XMLNode family = edit.Documents().front().Document().GetRootNode();
    add(family, L"FamilyTable/Columns/Column", L"ColumnId");
    add(family, L"FamilyTable/Rows/Row/Cell", L"ColumnId");
    add(family, L"ParameterMap//*[@TableColumn]", L"TableColumn");
    for (std::size_t i = 1; i < edit.Documents().size(); ++i) {
        add(edit.Documents()[i].Document().GetRootNode(), L"Table/ColumnStrings", L"ColumnId");
    }
    return places;
}

bool IsReserved(const CString& id)
{
    constexpr const wchar_t* kReserved[] = {L"RID",
                                            L"STATUS",
                                            L"MEMBER_REVISION",
                                            L"SOURCE_MEMBER_REVISION",
                                            L"MATERIAL_ALIAS",
                                            L"original_FILENAME"};
    return std::any_of(std::begin(kReserved), std::end(kReserved),
                       [&](const wchar_t* reserved) { return EqualNoCase(reserved, id); });
}

void CheckIds(FamilyEdit& edit, const CString& from, const CString& to)
{
    if (IsReserved(from) || IsReserved(to)) {
        throw RefusedEdit(edit.Opened(), L"the column ID " + (IsReserved(from) ? from : to) +
                                             L" has a fixed meaning and cannot be given or taken");
    }
    const bool isOtherCase = EqualNoCase(from, to);
    if (!isOtherCase) {
        CheckNewColumnId(edit, to);
    }
    if (from != to && !PlacesOfId(edit, to, !isOtherCase).empty()) {
        throw RefusedEdit(edit.Opened(), L"there are cells, strings or mappings of a column " + to +
                                             L" that the table does not have");
    }
}

/// Compares the values of before with those of the documents as they are now.
void CheckValues(FamilyEdit& edit, const std::vector<Value>& before, const CString& to)
{
    const auto xmlOf = [](const EditedDocument& document) {
        CString xml;
        document.Document().GetXml(xml);
        return xml;
    };
    const FamilyFile& file = edit.Opened().File();
    std::vector<CString> strings;
    for (std::size_t i = 1; i < edit.Documents().size(); ++i) {
        const bool isFirst = file.Strings()[i - 1].language == edit.Opened().Language();
        strings.insert(isFirst ? strings.begin() : strings.end(), xmlOf(edit.Documents()[i]));
    }
    FamilyHost host;
    const CEncapFamily renamed(xmlOf(edit.Documents().front()).c_str(), strings, L"",
                               &host.Provider(), false);
    const CEncapFamilyTable& table = *renamed.GetEncapFamilyTable();
    const std::vector<CString> languages = LanguagesOf(file);
    const std::vector<Value> after = ValuesOf(table, languages);
    const auto changed = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    if (changed.first == before.end() && changed.second == after.end()) {
        return;
    }
    CString which;
    if (changed.first != before.end() && changed.second != after.end()) {
        const auto cell = static_cast<std::size_t>(changed.first - before.begin());
        const std::size_t rows = table.GetRowsCount();
        const auto column = static_cast<int>(cell / rows % table.GetColumnsCount());
        which =
            FormatText(L": row %s, column %s would have \"%s\" instead of \"%s\"",
                       {table.GetAllRowIDs()[cell % rows], table.GetFamilyColumnIDByIndex(column),
                        changed.second->text, changed.first->text});
    }
    throw RefusedEdit(edit.Opened(), L"the name " + to + L" would change values" + which);
}

} // namespace

void CheckNewColumnId(FamilyEdit& edit, const CString& id)
{
    if (edit.Table().GetFamilyColumnByID(id.c_str()) != nullptr) {
        throw RefusedEdit(edit.Opened(), L"there is a column \"" + id + L"\" already");
    }
    if (!edit.Table().IsValidNewColumnName(id.c_str())) {
        throw RefusedEdit(edit.Opened(), L"\"" + id +
                                             L"\" is no column ID: a letter, then letters, digits, "
                                             L"\"_\" and \"-\"");
    }
}

std::vector<CString> UsersOf(FamilyEdit& edit, const CString& columnId)
{
    std::vector<CString> users;
    for (const FormulaPlace& place : Places(edit, columnId).found) {
        if (!EqualNoCase(place.column, columnId)) {
            users.push_back(place.where);
        }
    }
    return users;
}

void RenameColumn(FamilyEdit& edit, const CString& from, const CString& to)
{
    CheckIds(edit, from, to);
    const std::vector<Value> before = ValuesOf(edit.Table(), LanguagesOf(edit.Opened().File()));
    for (FormulaPlace& place : Places(edit, from).found) {
        place.SetText(RenameReferences(place.Text(), from, to));
    }
    for (IdPlace& place : PlacesOfId(edit, from, false)) {
        place.node.SetProperty(place.attribute, to);
    }
    CheckValues(edit, before, to);
}

} // namespace encap::cli
