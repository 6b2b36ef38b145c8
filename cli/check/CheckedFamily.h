#pragma once

#include "cli/FamilyChecks.h"
#include "cli/OpenFamily.h"
#include "encap/foundation/StringMap.h"
#include "encap/table/FamilyTable.h"

#include <map>
#include <vector>

namespace encap::cli {

/// A text that a column's values are computed from.
struct ColumnFormula {
    CString text;
    CString language; ///< empty: for all languages that have none of their own
};

/// A column of the table and what the checks ask of it again and again.
struct CheckedColumn {
    CEncapFamilyColumn* column = nullptr;
    std::size_t index = 0; ///< in table order
    CString id;
    CString unit;
    CString formula;                     ///< as stored, for all languages
    std::vector<ColumnFormula> formulas; ///< that one and those of languages; none is empty
    /// The columns that they refer to, by index in table order.
    std::vector<std::size_t> references;
    bool isEvaluated = false; ///< not one whose cells are shown as they stand (RID, STATUS)
    bool isShadowed = false;  ///< it has no ID, or another column is found by it
    bool holdsNumbers = false;
    bool isCustom = false;
    bool isLocalized = false;
    bool variesByLanguage = false; ///< it or a column that its formula needs is localized
};

/// An open family as the checks see it. Refers to it; the table must not change.
class CheckedFamily {
public:
    CheckedFamily(OpenFamily& family, const CheckOptions& options);
    CheckedFamily(const CheckedFamily&) = delete;
    CheckedFamily& operator=(const CheckedFamily&) = delete;

    [[nodiscard]] OpenFamily& Opened() const { return m_family; }
    [[nodiscard]] const CheckOptions& Asked() const { return m_options; }
    /// One empty language when there are no strings documents.
    [[nodiscard]] const std::vector<CString>& Languages() const { return m_languages; }
    [[nodiscard]] const std::vector<CheckedColumn>& Columns() const { return m_columns; }
    /// As the library finds it, without regard to case; null when there is none.
    [[nodiscard]] const CheckedColumn* FindColumn(const CString& id) const;
    /// The columns in braces, by index, as far as the table has them.
    [[nodiscard]] std::vector<std::size_t> ReferencesIn(const CString& formula) const;
    /// The columns that an ID which the table does not have may mean, in words.
    [[nodiscard]] CString Suggestion(const CString& wrongId) const;

private:
    void ReadColumns();
    void ReadFormulas(CheckedColumn& column);
    void MarkVarying();

    OpenFamily& m_family;
    const CheckOptions& m_options;
    std::vector<CString> m_languages;
    std::vector<CheckedColumn> m_columns;
    std::map<const CEncapFamilyColumn*, std::size_t> m_byColumn;
    mutable ExactMap<CString> m_suggestions; ///< a wrong ID often stands in every row
};

/// Visits the child elements of that name in document order.
template <class Visitor>
void ForEachChild(const XMLNode& parent, std::wstring_view name, Visitor visit)
{
    CString childName;
    XMLNode child;
    for (bool isThere = parent.GetFirstChildNode(child); isThere;) {
        child.GetNodeName(childName);
        if (childName == name) {
            visit(child);
        }
        XMLNode next;
        isThere = child.GetNextSibling(next);
        child = std::move(next);
    }
}

} // namespace encap::cli
