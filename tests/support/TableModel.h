#pragma once

#include "encap/foundation/Types.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace encap::test {

/// Whether two IDs differ at most in the case of ASCII letters.
bool SameId(const CString& left, const CString& right);

/// A family table as plain lists and maps: what every edit must leave behind, written down anew.
/// A revision stamp or another value that cannot be foretold stands as "<n>" until Settle has seen
/// what the library made of it; equal numbers must turn out as equal texts, others as new ones.
class TableModel {
public:
    struct Column {
        CString id{}, title{}, unit{}, formula{};
        int type = 0; ///< 0 text, 1 and 2 numbers
        bool hidden = false, custom = false, geometry = false;
        bool mapped = false; ///< supplies a localized category parameter
        bool typed = true;   ///< its element names a data type
        int weight = 0;
        std::set<CString> refs{}; ///< the columns that the formula is known to refer to
    };
    struct Row {
        CString id;
        std::map<CString, CString> cells{};
        bool suppressed = false;
        int state = 0;
    };
    struct Strings {
        std::map<std::pair<CString, CString>, CString> cells{}; ///< by column and row
        std::map<std::pair<CString, CString>, CString> texts{}; ///< by column and property
    };
    struct Value {
        int code = 0;
        CString text{};
        bool operator==(const Value&) const = default;
    };

    std::list<Column> columns;
    std::list<Row> rows;
    std::map<CString, Strings> strings; ///< by language
    CString actual;                     ///< the current language
    bool copied = false;                ///< the family is a copy of another
    bool incomplete = false;            ///< loading met a formula with an unknown column

    template <class Item>
    static Item* Find(std::list<Item>& items, const CString& id)
    {
        const auto same = [&](const Item& item) { return SameId(item.id, id); };
        const auto found = std::find_if(items.begin(), items.end(), same);
        return found != items.end() ? &*found : nullptr;
    }
    template <class Item>
    static Item& At(std::list<Item>& items, int index)
    {
        return *std::next(items.begin(), index);
    }
    template <class Item>
    static Item& Insert(std::list<Item>& items, int index, Item item)
    {
        const int place = std::clamp(index, 0, static_cast<int>(items.size()));
        return *items.insert(std::next(items.begin(), place), std::move(item));
    }
    template <class Item>
    static void Move(std::list<Item>& items, int from, int& index)
    {
        index = std::min(index, static_cast<int>(items.size()) - 1);
        Item item = At(items, from);
        items.erase(std::next(items.begin(), from));
        Insert(items, index, std::move(item));
    }

    bool Localized(const Column& column) const;

    // Evaluation.
    Value Read(const Row& row, const CString& columnId, const CString& language);

    // Edits.
    void SetValue(Row& row, Column& column, const CString& language, const CString& text);
    void SetRaw(Row& row, const Column& column, const CString& language, const CString& text);
    void SetLocalizedCell(const Column& column, const CString& row, const CString& language,
                          const CString& text);
    Row& InsertRow(int index, const CString& id);
    void DeleteRow(int index);
    /// Fills a new row; a cell that cannot be read is copied as it stands.
    void CopyRow(const Row& source, Row& copy);
    void PasteRow(Row& target, const Row& source);
    Column& InsertColumn(int index, Column column);
    void DuplicateColumn(int index, const Column& source, const CString& id);
    void DeleteColumn(int index);
    int SetFormula(Column& column, const CString& formula, const CString& language);
    void SetEmptyFormula(Column& column);
    void SetCustom(Column& column, bool custom);
    void SetText(const CString& column, const CString& property, const CString& text,
                 const CString& language);
    CString FormulaIn(const Column& column, const CString& language) const;
    void BumpAll();
    /// What a load of the documents keeps.
    void Reopen();

    /// The check that a column makes of a formula before the search for cycles: a result code.
    int Check(const Column& column, const CString& formula);
    bool CausesRefresh(const Column& column);
    /// Whether the target depends on the column.
    bool Reaches(const CString& columnId, const CString& target);

    /// Replaces what could not be foretold by the text that the library has there; false when that
    /// text is not new.
    bool Settle(CString& text, const CString& found);

private:
    static bool HasValue(const Value& value) { return value.code == 0 || value.code == 8; }
    template <class Key>
    static void Put(std::map<Key, CString>& map, const Key& key, const CString& text)
    {
        if (text.empty()) {
            map.erase(key);
        } else {
            map[key] = text;
        }
    }
    CString Unknown() { return L"<" + std::to_wstring(++m_unknowns) + L">"; }

    /// The columns as they are now; an edit may append one.
    std::vector<Column*> InOrder();

    // Values.
    CString Source(const Row& row, const Column& column, const CString& language) const;
    static std::optional<std::vector<std::pair<bool, CString>>> Tokens(const CString& text);
    static std::optional<std::vector<CString>> RangeParts(const CString& text);
    static bool IsNumber(const CString& text);
    static CString Joined(const CString& text);
    Value Evaluate(const Row& row, const Column& column, CString source, const CString& language);
    static Value Number(const Value& expression, const CString& plain);
    int CheckNormal(const Column& column, const CString& formula);

    // Dependencies.
    int Connect(Column& column, const CString& formula);
    void Build();
    void Store(Column& column, const CString& formula);
    void BuildIfIncomplete();
    bool Reaches(const CString& from, const CString& target, std::set<CString>& seen);
    bool CausesRefresh(const Column& column, std::set<CString>& seen);

    // Revisions.
    void Bump(Row& row);
    Column* RevisionColumn();
    bool KeepSourceRevisions(const Column& revisions);

    std::set<CString> m_visiting;
    std::map<CString, CString> m_settled;
    std::set<CString> m_stamps;
    int m_unknowns = 0;
};

} // namespace encap::test
