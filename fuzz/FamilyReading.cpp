#include "fuzz/FamilyReading.h"

#include "encap/family/Family.h"
#include "encap/foundation/NumberText.h"
#include "encap/mapping/FamilyMapping.h"
#include "encap/table/FamilyTable.h"
#include "fuzz/Support.h"

#include <algorithm>
#include <set>
#include <vector>

namespace encap::fuzz {
namespace {

// Reading every cell of a table is a product: an input of n bytes may ask for n * n of them.
constexpr uint64_t kMostCells = 1000;
constexpr uint64_t kMostColumnRows = 2000;
constexpr std::size_t kMostColumns = 12;

/// Every question that can be asked, in a fixed order, and the answers to them.
class Reading {
public:
    explicit Reading(CEncapFamily& family) : m_family(family) {}

    CString Run()
    {
        Properties();
        Languages();
        if (CEncapFamilyTable* table = m_family.GetEncapFamilyTable()) {
            Table(*table);
        }
        if (const CEncapFamilyMapping* mapping = m_family.GetEncapFamilyMapping()) {
            Mapping(*mapping);
        }
        XMLParser copy;
        Note(m_family.GetFamilyXMLCopyWithStrings(copy));
        Note(XmlOf(copy));
        return std::move(m_said);
    }

private:
    void Note(const CString& text) { m_said.append(text).append(1, L'\n'); }
    void Note(const wchar_t* text) = delete;
    void Note(int64_t number) { Note(FormatInteger(number)); }

    void Properties()
    {
        CString text;
        for (int32_t type = -1; type < 17; ++type) {
            Note(m_family.GetFamilyProperty(static_cast<FamilyPropType>(type), text));
            Note(text);
        }
        using Getter = void (CEncapFamily::*)(CString&) const;
        for (const Getter getter :
             {&CEncapFamily::GetInternalName, &CEncapFamily::GetStandardOrg,
              &CEncapFamily::GetHealthStatus, &CEncapFamily::GetParenLibName,
              &CEncapFamily::GetParentFamilyName, &CEncapFamily::GetCategoryID,
              &CEncapFamily::GetSourceMoniker, &CEncapFamily::GetCopyFrom}) {
            (m_family.*getter)(text);
            Note(text);
        }
        unsigned long bits = 0;
        m_family.GetEditStatus(bits);
        Note(static_cast<int64_t>(bits));
        Note(m_family.IsSickFamilyTable() | m_family.IsFeature() << 1 | m_family.IsLinked() << 2 |
             m_family.IsSrcActive() << 3);
    }

    void Languages()
    {
        m_languages = {L"", L"none"};
        XMLParser document;
        for (int i = 0; m_family.GetStringsFamilyXML(i, document); ++i) {
            CString language;
            document.GetRootNode().GetProperty(L"xml:lang", language);
            if (m_languages.size() < 5) {
                m_languages.push_back(language);
            }
            Note(XmlOf(document));
        }
        CString actual;
        m_family.GetActualLanguage(actual);
        Note(actual);
    }

    void Table(CEncapFamilyTable& table)
    {
        const std::vector<CString> rows = table.GetAllRowIDs();
        std::vector<CString> columns = table.GetAllColumnIDs();
        Note(static_cast<int64_t>(rows.size()));
        Cells(table, rows, columns);
        const std::size_t affordable = kMostColumnRows / std::max<std::size_t>(rows.size(), 1) + 1;
        columns.resize(std::min({columns.size(), kMostColumns, affordable}));
        for (const CString& id : columns) {
            if (CEncapFamilyColumn* column = table.GetFamilyColumnByID(id.c_str())) {
                ColumnFacts(*column);
                ColumnChecks(table, *column, rows);
            }
        }
        WholeTable(table);
    }

    void Cells(CEncapFamilyTable& table, const std::vector<CString>& rows,
               const std::vector<CString>& columns)
    {
        const uint64_t count = rows.size() * columns.size() * m_languages.size();
        const uint64_t stride = count / kMostCells + 1;
        for (uint64_t i = 0; i < count; i += stride) {
            const CString& language = m_languages[i % m_languages.size()];
            const uint64_t cell = i / m_languages.size();
            const CString& row = rows[cell / columns.size()];
            const CString& column = columns[cell % columns.size()];
            CString value = L"as it was";
            const int result = table.GetValue(row.c_str(), column.c_str(), language.c_str(), value);
            Require(result == 0 || result == 8 || value == L"as it was",
                    "a failed read leaves its output");
            Note(result);
            Note(value);
        }
    }

    void ColumnFacts(CEncapFamilyColumn& column)
    {
        CString text;
        for (const CString& language : m_languages) {
            column.GetTitle(text, language.c_str());
            Note(text);
            column.GetFormula(text, language.c_str());
            Note(text);
        }
        column.GetUnitType(text);
        Note(text);
        Note(column.GetDataType());
        Note(column.GetKeyWeight());
        Note(column.GetColumnType());
        Note(column.IsHidden() | column.IsCustom() << 1 | column.IsStatusColumn() << 2 |
             column.IsPropertyColumn() << 3 | column.IsGeometryColumn() << 4 |
             column.IsZelPropertyColumn() << 5 | column.IsKeyColumn() << 6 |
             column.IsExpressionColumn() << 7 | column.IsMaterial() << 8 |
             column.IsRestrictedColumn() << 9 | column.IsLocalized() << 10 |
             column.IsLegacyMapColumn() << 11 | column.IsReferencedByOther() << 12 |
             column.ChangeInColumnCausesRefresh() << 13);
        std::set<CEncapFamilyColumn*> dependents;
        Note(static_cast<int64_t>(column.GetAllDependentColumns(dependents, nullptr).size()));
        Note(column.CheckCircularDependency(nullptr));
        for (CEncapFamilyColumn* dependent : column.GetDependantColumns()) {
            Require(column.IsReferencedBy(dependent), "a dependent column is found to be one");
        }
    }

    void ColumnChecks(CEncapFamilyTable& table, CEncapFamilyColumn& column,
                      const std::vector<CString>& rows)
    {
        CString id;
        CString formula;
        CString unit;
        column.GetColumnID(id);
        column.GetFormula(formula);
        column.GetUnitType(unit);
        CTableEvaluator::EvaluateResult result = CTableEvaluator::EvaluateOK;
        Note(column.HasUniqueValues(result));
        Note(result);
        std::set<CString> values;
        column.GetAllUniqueRawValues(values);
        Note(static_cast<int64_t>(values.size()));
        std::vector<CString> overrides;
        Note(column.GetExpressionColumnOverrides(overrides));
        Note(column.ValidateNormalFormula(formula.c_str(), L""));
        Note(table.IsFormulaValid(id.c_str(), formula.c_str()));
        Note(table.CheckRangeColumnData(id.c_str(), nullptr));
        const CString row = rows.empty() ? CString() : rows.front();
        for (const int kind : {100, 101, 102}) {
            const auto formulaType = static_cast<DataTypes::ColumnFormulaType>(kind);
            Note(table.CheckFormulaSyntax(formula.c_str(), formulaType, column.GetDataType(),
                                          unit.c_str()));
            CString value;
            Note(table.Evaluate(formula.c_str(), formulaType, column.GetDataType(), row.c_str(),
                                unit.c_str(), value));
            Note(value);
            Note(table.IsCellValueValid(row.c_str(), id.c_str(), value.c_str()));
        }
        CString key;
        Note(m_family.GetColumnCategory(id.c_str(), key));
        Note(key);
        Note(m_family.GetCategoryParamColumn(key.c_str()) == &column);
    }

    void WholeTable(CEncapFamilyTable& table)
    {
        CString text;
        std::vector<CString> titles;
        Note(table.HasCustomColumns());
        Note(table.hasColumnExpression(text));
        Note(text);
        Note(table.FileNameOfCustomPartIsUnique(titles));
        Note(static_cast<int64_t>(titles.size()));
        Note(static_cast<int64_t>(table.GetKeyColumns().size()));
        Note(table.GetStatusColIDStr());
        const CString firstRow = table.GetRowIDByIndex(0);
        Note(table.IsRowSuppressed(firstRow.c_str()));
        Note(table.GetMemberMaterialRefId(firstRow.c_str(), text));
        Note(text);
        CComBSTR xml;
        Note(table.GetEvaluatedXml(xml));
        Note(CString(xml));
        Require(table.GetColumnsCount() == 0 || XMLParser(xml).GetRootNode().IsNode() ||
                    xml.Length() == 0,
                "the evaluated table parses");
    }

    void Mapping(const CEncapFamilyMapping& mapping)
    {
        for (const CString& name : mapping.GetTemplateNames()) {
            const CEncapFamilyTemplate* entry = mapping.GetFamilyTemplate(name.c_str());
            Require(entry != nullptr, "a template that is listed is found");
            Note(name);
            for (const CEncapFamilyTemplateParameter* parameter : entry->GetParameters()) {
                CString text;
                parameter->GetObjectReferenceKey(text);
                Note(text);
                Note(parameter->GetId());
                Note(static_cast<int64_t>(parameter->GetChildren().size()));
            }
        }
        const CEncapFamilyTable* table = m_family.GetEncapFamilyTable();
        for (int i = 0; table != nullptr && i < static_cast<int>(kMostColumns); ++i) {
            const CString id = table->GetFamilyColumnIDByIndex(i);
            if (const auto* templates = mapping.GetColumnTemplateMap(id.c_str())) {
                Note(static_cast<int64_t>(templates->GetMappings().size()));
            }
            std::vector<CString> parameters;
            if (const auto* supplied = mapping.GetColumnCategoryMap(id.c_str())) {
                supplied->GetCategoryParams(parameters);
            }
            for (const CString& parameter : parameters) {
                CString value;
                Note(m_family.GetCatParamConstValue(parameter.c_str(), value));
                Note(m_family.IsCatParamLocalized(parameter.c_str()));
                Note(value);
            }
        }
    }

    CEncapFamily& m_family;
    std::vector<CString> m_languages;
    CString m_said;
};

struct Documents {
    CString family;
    std::vector<CString> strings;
    bool operator==(const Documents&) const = default;
};

Documents Save(CEncapFamily& family)
{
    Documents saved;
    saved.family = XmlOf(family.GetFamilyXML());
    XMLParser document;
    for (int i = 0; family.GetStringsFamilyXML(i, document); ++i) {
        saved.strings.push_back(XmlOf(document));
    }
    return saved;
}

} // namespace

CString ReadEverything(CEncapFamily& family)
{
    return Reading(family).Run();
}

CString RequireSavedDocumentsHold(CEncapFamily& family)
{
    if (!family.GetFamilyXML().GetRootNode().IsNode()) {
        return ReadEverything(family);
    }
    const Documents saved = Save(family);
    CEncapFamily reopened(saved.family.c_str(), saved.strings, L"", family.GetEvaluatorProvider(),
                          family.LocalizeDecimalSeparator());
    Require(reopened.GetEncapFamilyTable() != nullptr, "a saved document parses");
    Require(Save(reopened) == saved, "a saved document holds what was set");
    CString said = ReadEverything(reopened);
    Require(Save(reopened) == saved, "reading changes no document");
    return said;
}

} // namespace encap::fuzz
