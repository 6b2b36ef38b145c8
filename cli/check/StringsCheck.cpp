#include "cli/check/FamilyCheck.h"

#include <algorithm>
#include <functional>

namespace encap::cli {
namespace {

/// Strings documents that are missing, texts that are missing in some, and texts for nothing.
class StringsCheck : public FamilyCheck {
public:
    explicit StringsCheck(const CheckedFamily& family);

    void Begin(const FindingReport& report) override;
    void VisitColumn(const CheckedColumn& column, const FindingReport& report) override;
    void VisitRow(const CheckedRow& row, const FindingReport& report) override;

private:
    /// Whether there is a text in the language with this index.
    using HasText = std::function<bool(std::size_t language)>;

    void CheckLanguages(const CString& what, const Place& place, const HasText& hasText,
                        const FindingReport& report) const;
    void CheckConstants(const FindingReport& report) const;
    void CheckTargets(std::size_t language, const FindingReport& report) const;
    void CheckRows(const XMLNode& columnStrings, const Place& place,
                   const FindingReport& report) const;

    const CheckedFamily& m_family;
    std::vector<XMLNode> m_roots; ///< of the strings documents, by language
};

CString TextAt(const XMLNode& node, const wchar_t* path)
{
    CString text;
    XMLNode found;
    if (node.GetChildNode(path, found)) {
        found.GetNodeText(text);
    }
    return text;
}

StringsCheck::StringsCheck(const CheckedFamily& family) : m_family(family)
{
    const CEncapFamily& opened = family.Opened().Family();
    for (int i = 0; i < opened.GetFamStringsCount(); ++i) {
        XMLParser document;
        opened.GetStringsFamilyXML(i, document);
        m_roots.push_back(document.GetRootNode());
    }
}

void StringsCheck::Begin(const FindingReport& report)
{
    for (const CString& problem : m_family.Asked().stringsProblems) {
        report.Add(Rule::StringsMissing, {}, {problem});
    }
    const auto has = [this](const wchar_t* element) {
        return [this, element](std::size_t language) {
            return !TextAt(m_roots[language], element).empty();
        };
    };
    CheckLanguages(L"display name", {}, has(L"DisplayName"), report);
    CheckLanguages(L"description", {}, has(L"Description"), report);
    CheckConstants(report);
    for (std::size_t language = 0; language < m_roots.size(); ++language) {
        CheckTargets(language, report);
    }
}

void StringsCheck::CheckLanguages(const CString& what, const Place& place, const HasText& hasText,
                                  const FindingReport& report) const
{
    CString there;
    CString missing;
    for (std::size_t language = 0; language < m_roots.size(); ++language) {
        CString& list = hasText(language) ? there : missing;
        list.append(list.empty() ? L"" : L", ").append(m_family.Languages()[language]);
    }
    if (!there.empty() && !missing.empty()) {
        report.Add(Rule::StringsIncomplete, place, {what, there, missing});
    }
}

void StringsCheck::CheckConstants(const FindingReport& report) const
{
    std::vector<CString> ids; // in the order of the documents
    std::vector<ExactMap<bool>> has(m_roots.size());
    for (std::size_t language = 0; language < m_roots.size(); ++language) {
        XMLNode constants;
        m_roots[language].GetChildNode(L"ConstantValues", constants);
        ForEachChild(constants, L"ConstantValue", [&](const XMLNode& constant) {
            CString id;
            constant.GetProperty(L"CategoryParameter", id);
            const bool isNew = std::none_of(has.begin(), has.end(), [&](const auto& known) {
                return known.find(id) != known.end();
            });
            has[language].emplace(id, true);
            if (isNew) {
                ids.push_back(id);
            }
        });
    }
    for (const CString& id : ids) {
        CheckLanguages(
            L"constant of the category parameter " + id, {},
            [&](std::size_t language) { return has[language].count(id) > 0; }, report);
    }
}

void StringsCheck::CheckTargets(std::size_t language, const FindingReport& report) const
{
    XMLNode table;
    m_roots[language].GetChildNode(L"Table", table);
    ForEachChild(table, L"ColumnStrings", [&](const XMLNode& strings) {
        Place place{.language = m_family.Languages()[language]};
        strings.GetProperty(L"ColumnId", place.column);
        const CheckedColumn* column = m_family.FindColumn(place.column);
        if (column == nullptr || column->id != place.column) {
            report.Add(Rule::StringsUnknown, place, {L"column " + place.column});
        } else {
            CheckRows(strings, place, report);
        }
    });
}

void StringsCheck::CheckRows(const XMLNode& columnStrings, const Place& place,
                             const FindingReport& report) const
{
    const CEncapFamilyTable& table = m_family.Opened().Table();
    XMLNode rows;
    columnStrings.GetChildNode(L"Rows", rows);
    Place cell = place;
    CString knownId;
    ForEachChild(rows, L"CellString", [&](const XMLNode& text) {
        text.GetProperty(L"RowId", cell.row);
        const CEncapFamilyRow* row = table.GetFamilyRowByID(cell.row.c_str());
        if (row != nullptr) {
            row->GetRowID(knownId);
        }
        if (row == nullptr || knownId != cell.row) {
            report.Add(Rule::StringsUnknown, cell, {L"row " + cell.row});
        }
    });
}

void StringsCheck::VisitColumn(const CheckedColumn& column, const FindingReport& report)
{
    const CEncapFamily& family = m_family.Opened().Family();
    const auto has = [&](const wchar_t* property) {
        return [this, &family, &column, property](std::size_t language) {
            CString text;
            return family.GetLocalizedColumnPropertyValue(column.id.c_str(), property,
                                                          m_family.Languages()[language].c_str(),
                                                          text) == 0 &&
                   !text.empty();
        };
    };
    CheckLanguages(L"title", {.column = column.id}, has(L"Title"), report);
    if (column.isLocalized) {
        CheckLanguages(L"formula", {.column = column.id}, has(L"ColumnwideValue"), report);
    }
}

void StringsCheck::VisitRow(const CheckedRow& row, const FindingReport& report)
{
    if (!row.HasValues()) {
        return;
    }
    CString text;
    for (const CheckedColumn& column : m_family.Columns()) {
        if (!column.isLocalized || column.isShadowed) {
            continue;
        }
        CheckLanguages(
            L"text", {.row = row.id, .column = column.id},
            [&](std::size_t language) {
                return m_family.Opened().Family().GetLocalizedCellValue(
                           column.id.c_str(), row.id.c_str(),
                           m_family.Languages()[language].c_str(), text) == 0;
            },
            report);
    }
}

} // namespace

std::unique_ptr<FamilyCheck> MakeStringsCheck(const CheckedFamily& family)
{
    return std::make_unique<StringsCheck>(family);
}

} // namespace encap::cli
