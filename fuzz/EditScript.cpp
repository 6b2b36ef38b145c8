#include "fuzz/EditScript.h"

#include "encap/mapping/FamilyMapping.h"
#include "fuzz/FamilyReading.h"

#include <array>

namespace encap::fuzz {
namespace {

constexpr int kMostSteps = 60;
constexpr int kMostDepth = 3;
constexpr uint64_t kMostRows = 40;
constexpr uint64_t kMostColumns = 30;

constexpr const wchar_t* kFamily =
    L"<Family InternalName='n' DisplayName='d' EditStatus='1'><Categories>"
    L"<Category InternalName='c' Hidden='false'><CategoryParameter InternalName='t' "
    L"ValueLocalized='true'/><CategoryParameter InternalName='u'/></Category>"
    L"<Category InternalName='h' Hidden='true'><CategoryParameter InternalName='v'/></Category>"
    L"</Categories><FamilyStrings><File FullFileName='x/FamilyStrings.en.xml'/></FamilyStrings>"
    L"<FamilyTable><Columns><Column ColumnId='RID' ValueType='string'/>"
    L"<Column ColumnId='STATUS' ValueType='string'/>"
    L"<Column ColumnId='A' Title='a' Hidden='false' KeyWeight='1' ValueType='double' "
    L"UnitType='mm'/>"
    L"<Column ColumnId='B' Title='b' ValueType='double' UnitType='in' ColumnwideValue='{A}*2'/>"
    L"<Column ColumnId='C' Title='c' ValueType='integer' Custom='true' "
    L"ColumnwideValue='[1;{A};1;2]'/>"
    L"<Column ColumnId='S' Title='s' Hidden='false' ValueType='string' "
    L"ColumnwideValue='&quot;x&quot; &amp; {A}'/>"
    L"<Column ColumnId='T' Title='t' Hidden='false' ValueType='string'/>"
    L"<Column ColumnId='MEMBER_REVISION' ValueType='string'/></Columns>"
    L"<Rows><Row RowId='r1'><Cell ColumnId='RID'>r1</Cell><Cell ColumnId='A'>1</Cell>"
    L"<Cell ColumnId='T'>t</Cell></Row><Row RowId='r2'><Cell ColumnId='A'>{C}</Cell></Row>"
    L"</Rows></FamilyTable><FamilyTemplates><FamilyTemplate Name='T1' FileName='f'>"
    L"<GeneralizedParameter Id='1' ObjectReferenceKey='k' SubObjectId='s'>"
    L"<GeneralizedParameter Id='2'/></GeneralizedParameter></FamilyTemplate></FamilyTemplates>"
    L"<ParameterMap><MemberParametersMap><ParamsToColumn><ParamToColumn TableColumn='T'>"
    L"<CategoryParameterRef Category='c' CategoryParameter='t'/></ParamToColumn>"
    L"</ParamsToColumn><ColumnsToTemplate><ColumnToTemplate TableColumn='A'><TemplatesParameter>"
    L"<TemplateParameter TemplateName='T1' ParameterId='1'/></TemplatesParameter>"
    L"</ColumnToTemplate></ColumnsToTemplate></MemberParametersMap></ParameterMap></Family>";

constexpr std::array<const wchar_t*, 24> kTexts = {L"",
                                                   L"1",
                                                   L"2.5",
                                                   L"{A}",
                                                   L"{B}+1",
                                                   L"{a}*{C}",
                                                   L"{S} & {T}",
                                                   L"[1;9;2;3]",
                                                   L"[;{B};;]",
                                                   L"Suppressed",
                                                   L"true",
                                                   L"mm",
                                                   L"in",
                                                   L"ul",
                                                   L"t",
                                                   L"u",
                                                   L"c",
                                                   L"T1",
                                                   L"k",
                                                   L"MEMBER_REVISION",
                                                   L"SOURCE_MEMBER_REVISION",
                                                   L"MATERIAL_ALIAS",
                                                   L"818a152a-d3c3-49ca-80ee-df7d91421b8e",
                                                   L"9b2d5d3c]['\"<&>\x01"};

} // namespace

int32_t EditScript::Host::EvaluateExpression(const wchar_t* expression, const wchar_t* unit,
                                             double& value)
{
    // The arguments are the library's: they must stay what they are during a call back.
    const CString before = expression;
    m_script.CallBack();
    Require(before == expression, "a host's arguments outlive its calls back");
    return SharedProvider().EvaluateExpression(expression, unit, value);
}

int32_t EditScript::Host::ConvertUnits(const wchar_t* value, const wchar_t* fromUnit,
                                       const wchar_t* toUnit, double& result)
{
    m_script.CallBack();
    return SharedProvider().ConvertUnits(value, fromUnit, toUnit, result);
}

int32_t EditScript::Host::GetDatabaseUnit(const wchar_t* unit, CString& databaseUnit)
{
    return SharedProvider().GetDatabaseUnit(unit, databaseUnit);
}

int32_t EditScript::Host::GetMaterialName(const wchar_t* key, CString& name)
{
    m_script.CallBack();
    name = CString(L"name of ") + key;
    return 0;
}

int32_t EditScript::Host::GetMaterialRefKey(const wchar_t* name, CString& key)
{
    key = name;
    return 0;
}

EditScript::EditScript(std::string_view input) : m_choices(input)
{
    m_hostEdits = m_choices.Chance(2);
    const bool localizes = m_choices.Chance(4);
    const std::vector<CString> strings{L"<S xml:lang='en'/>", L"<S xml:lang='de'/>"};
    m_family = std::make_unique<CEncapFamily>(kFamily, strings, L"", &m_host, localizes);
    m_source = std::make_unique<CEncapFamily>(kFamily, strings, L"", nullptr, false);
}

void EditScript::Run()
{
    while (!m_choices.AtEnd() && m_steps < kMostSteps) {
        Step();
    }
    m_hostEdits = false;
    Require(!ReadEverything(*m_family).empty(), "a family always answers");
    RequireSavedDocumentsHold(*m_family);
    m_family.reset();
    for (XMLNode& node : m_heldNodes) {
        CString text;
        node.GetNodeText(text);
    }
}

void EditScript::CallBack()
{
    if (m_hostEdits && m_depth < kMostDepth && !m_choices.AtEnd() && m_steps < kMostSteps &&
        m_choices.Chance(3)) {
        ++m_depth;
        Step();
        --m_depth;
    }
}

void EditScript::Step()
{
    ++m_steps;
    switch (m_choices.Below(16)) {
    case 0:
    case 1:
    case 2: return EditStructure();
    case 3:
    case 4:
    case 5: return EditCells();
    case 6: return EditColumn();
    case 7:
    case 8: return EditFormula();
    case 9: return EditFamily();
    case 10: return EditTexts();
    case 11: return EditMapping();
    case 12: return EditTemplate();
    case 13: return EditDocument();
    case 14: return Read();
    default: return Reopen();
    }
}

void EditScript::EditStructure()
{
    int index = AnyIndex(Table().GetRowsCount());
    const int column = AnyIndex(Table().GetColumnsCount());
    const bool hasRoom =
        Table().GetRowsCount() < kMostRows && Table().GetColumnsCount() < kMostColumns;
    switch (hasRoom ? m_choices.Below(11) : 5 + m_choices.Below(6)) {
    case 0: Table().InsertNewRow(index, AnyRowId()); return;
    case 1: Table().InsertNewColumn(column, AnyColumnId().c_str()); return;
    case 2: Table().CopyRow(AnyRowId()); return;
    case 3: Table().DuplicateColumn(column, AnyColumnId().c_str(), AnyText().c_str()); return;
    case 4: Table().CreateSourceMemberRevisionColumn(); return;
    case 5: Table().DeleteRow(index); return;
    case 6: Table().DeleteColumn(column); return;
    case 7: Table().PasteRow(index, AnyIndex(Table().GetRowsCount())); return;
    case 8: Table().ChangeRowIndex(AnyRowId().c_str(), index); return;
    case 9: Table().ChangeColumnIndex(AnyColumnId().c_str(), index); return;
    default: Table().ValidateAndRepairColumnData(AnyColumn());
    }
}

void EditScript::EditCells()
{
    const CString row = AnyRowId();
    const CString column = AnyColumnId();
    const bool refresh = !m_choices.Chance(4);
    switch (m_choices.Below(9)) {
    case 0: Table().SetValue(row.c_str(), column.c_str(), AnyText().c_str(), refresh); return;
    case 1:
        Table().SetValue(row.c_str(), column.c_str(), AnyLanguage().c_str(), AnyText().c_str(),
                         refresh);
        return;
    case 2:
        Table().SetValue(AnyIndex(Table().GetRowsCount()), column.c_str(), AnyText().c_str(),
                         refresh);
        return;
    case 3: Table().ClearCachedValue(row.c_str(), column.c_str()); return;
    case 4: Table().SetStatusColValue(AnyIndex(Table().GetRowsCount()), AnyText().c_str()); return;
    case 5: m_family->SetRangeColumnValues({{column, AnyText()}, {L"C", AnyText()}}); return;
    case 6: Table().BumpAllMemberRevisions(refresh ? nullptr : AnyText().c_str()); return;
    case 7:
        if (CEncapFamilyRow* found = Table().GetFamilyRowByID(row.c_str())) {
            found->DeleteCellsColumnValues(column.c_str(), refresh);
        }
        return;
    default:
        if (CEncapFamilyRow* found = Table().GetFamilyRowByID(row.c_str())) {
            found->SetRowState(CEncapFamilyRow::RowStateNew);
            found->SetValue(column.c_str(), AnyText().c_str(), refresh);
        }
    }
}

void EditScript::EditColumn()
{
    CEncapFamilyColumn* column = AnyColumn();
    const CString text = AnyText();
    const bool flag = m_choices.Chance(2);
    if (column == nullptr) {
        return;
    }
    switch (m_choices.Below(13)) {
    case 0: column->SetColumnID(text.c_str()); return;
    case 1: column->SetTitle(text.c_str(), AnyLanguage().c_str()); return;
    case 2: column->SetTitle(text.c_str()); return;
    case 3: column->SetUnitType(text.c_str()); return;
    case 4:
        column->SetDataType(static_cast<DataTypes::ColumnDataType>(m_choices.Below(6) - 1));
        return;
    case 5: column->SetKeyWeight(static_cast<int32_t>(m_choices.Number())); return;
    case 6: column->SetIsHidden(flag); return;
    case 7: column->SetIsCustom(flag); return;
    case 8: column->SetIsGeometryColumn(flag); return;
    case 9: column->SetIsZelPropertyColumn(flag); return;
    case 10: column->UpdateColumnType(text); return;
    case 11: column->SetIsStatusColumn(flag); return;
    default: column->ClearCachedValue(AnyRowId().c_str());
    }
}

void EditScript::EditFormula()
{
    CEncapFamilyColumn* column = AnyColumn();
    const CString text = AnyText();
    if (column == nullptr) {
        return;
    }
    switch (m_choices.Below(5)) {
    case 0: column->SetEmptyFormula(); return;
    case 1: column->ValidateNormalFormula(text.c_str(), AnyLanguage()); return;
    case 2: column->SetFormula(text.c_str(), AnyLanguage().c_str()); return;
    default: column->SetFormula(text.c_str());
    }
}

void EditScript::EditFamily()
{
    const CString text = AnyText();
    switch (m_choices.Below(11)) {
    case 0:
        m_family->SetFamilyProperty(static_cast<FamilyPropType>(m_choices.Below(13)), text.c_str());
        return;
    case 1: m_family->SetInternalName(text.c_str()); return;
    case 2: m_family->SetLink(m_choices.Chance(2) ? m_family.get() : m_source.get(), true); return;
    case 3: m_family->ClearLink(); return;
    case 4: m_family->SetCopyFrom(text.c_str()); return;
    case 5: m_family->UpdateEditStatus(m_choices.Number()); return;
    case 6: m_family->SetHealthStatus(text.c_str()); return;
    case 7: m_family->SetThumbnailPath(text.c_str()); return;
    case 8: m_family->SetDisplayName(text.c_str()); return;
    case 9: m_family->SetCatParamConstValue(text.c_str(), AnyText().c_str()); return;
    default: m_family->SetTemplateParameterValue(text.c_str(), L"1", AnyText().c_str());
    }
}

void EditScript::EditTexts()
{
    const CString row = AnyRowId();
    const CString column = AnyColumnId();
    const CString language = AnyLanguage();
    switch (m_choices.Below(5)) {
    case 0:
        m_family->SetLocalizedCellValue(column.c_str(), row.c_str(), AnyText().c_str(),
                                        language.c_str());
        return;
    case 1:
        m_family->SetLocalizedColumnPropertyValue(
            column.c_str(), m_choices.Chance(2) ? L"Title" : L"ColumnwideValue", AnyText().c_str(),
            language.c_str());
        return;
    case 2: m_family->DeleteLocalizedCellsValues(row.c_str(), column.c_str(), true); return;
    case 3: m_family->DeleteLocalizedColumnCells(column.c_str(), false); return;
    default: m_family->DeleteLocalizedColumnPropertyValues(column.c_str());
    }
}

void EditScript::EditMapping()
{
    CEncapFamilyMapping& mapping = *m_family->GetEncapFamilyMapping();
    CEncapFamilyColumn* column = AnyColumn();
    const CString text = AnyText();
    const CString other = AnyText();
    if (column == nullptr) {
        return;
    }
    const auto type =
        static_cast<CEncapFamilyColVexilData::ColPropertyObjectType>(m_choices.Below(9));
    switch (m_choices.Below(6)) {
    case 0:
        column->SetIsGeometryColumn(m_choices.Chance(2));
        column->SetIsZelPropertyColumn(m_choices.Chance(2));
        mapping.UpdateColumnMapping(column, text.c_str(), other.c_str(), type);
        return;
    case 1: mapping.AddParamToColumnMapping(column, text.c_str(), other.c_str()); return;
    case 2: m_family->RemoveAllColumnMapping(column); return;
    case 3:
        column->SetColVexilData(mapping.GetColVexilData(text.c_str(), other.c_str(), type));
        return;
    case 4: m_family->InitializeColumnData(column); return;
    default: m_family->GetCategoryParamColumn(text.c_str());
    }
}

void EditScript::EditTemplate()
{
    CEncapFamilyMapping& mapping = *m_family->GetEncapFamilyMapping();
    const CString text = AnyText();
    CEncapFamilyTemplate* entry = mapping.AddFamilyTemplate(text);
    if (entry == nullptr) {
        entry = mapping.GetFamilyTemplate(L"t1");
    }
    CEncapFamilyTemplateParameter* parameter =
        entry != nullptr ? entry->GetParameter(m_choices.Below(4)) : nullptr;
    switch (m_choices.Below(5)) {
    case 0:
        if (entry != nullptr) {
            entry->AddParameter(AnyText(), AnyText());
        }
        return;
    case 1:
        if (entry != nullptr) {
            entry->DeleteParameter(m_choices.Below(4));
        }
        return;
    case 2:
        if (parameter != nullptr) {
            parameter->SetObjectReferenceKey(AnyText().c_str());
        }
        return;
    case 3:
        if (parameter != nullptr) {
            parameter->DeleteChild(m_choices.Below(4));
        }
        return;
    default:
        if (parameter != nullptr) {
            parameter->RemoveNodeFromXML();
        }
    }
}

// Edits behind the library's back. What a table keeps of columns and rows is no longer what the
// document holds, so the script goes on with a family that is opened from it.
void EditScript::EditDocument()
{
    if (m_depth > 0) {
        return;
    }
    XMLNode node = AnyNode(m_family->GetFamilyXML().GetRootNode());
    XMLNode other = AnyNode(m_family->GetFamilyXML().GetRootNode());
    const CString text = AnyText();
    m_heldNodes.push_back(node);
    switch (m_choices.Below(9)) {
    case 0: node.SetProperty(text.c_str(), AnyText()); break;
    case 1: node.SetNodeText(text); break;
    case 2: node.RemoveThisNode(m_choices.Chance(2)); break;
    case 3: node.AddNode(text.c_str(), AnyText().c_str(), L"x", AnyText().c_str()); break;
    case 4: node.AppendChild(other); break;
    case 5: node.InsertChild(other, AnyIndex(4)); break;
    case 6: node.ImportNode(other, true); break;
    case 7: node.AppendChild(other.CloneNode(true)); break;
    default: node.AddNodeBefore(text.c_str(), AnyText().c_str());
    }
    Read();
    if (XmlOf(m_family->GetFamilyXML()).size() > 40'000) {
        m_steps = kMostSteps;
    }
    Reopen();
}

void EditScript::Read()
{
    CString value;
    for (int count = m_choices.Below(8); count > 0; --count) {
        Table().GetValue(AnyRowId().c_str(), AnyColumnId().c_str(), AnyLanguage().c_str(), value);
    }
    CEncapFamilyColumn* column = AnyColumn();
    CTableEvaluator::EvaluateResult result = CTableEvaluator::EvaluateOK;
    if (column != nullptr && m_choices.Chance(2)) {
        column->HasUniqueValues(result);
    }
    if (m_choices.Chance(4)) {
        CComBSTR xml;
        Table().GetEvaluatedXml(xml);
    }
}

void EditScript::Reopen()
{
    if (m_depth > 0) {
        return;
    }
    const CString saved = XmlOf(m_family->GetFamilyXML());
    std::vector<CString> strings;
    XMLParser document;
    for (int i = 0; m_family->GetStringsFamilyXML(i, document); ++i) {
        strings.push_back(XmlOf(document));
    }
    const bool localizes = m_family->LocalizeDecimalSeparator();
    auto reopened = std::make_unique<CEncapFamily>(saved.c_str(), strings, L"", &m_host, localizes);
    // Without its document element a family is empty: there is nothing to go on with.
    if (reopened->GetEncapFamilyTable() == nullptr) {
        m_steps = kMostSteps;
        return;
    }
    m_family = std::move(reopened);
}

CEncapFamilyColumn* EditScript::AnyColumn()
{
    return Table().GetFamilyColumnByIndex(
        m_choices.Below(static_cast<int>(Table().GetColumnsCount())));
}

CString EditScript::AnyRowId()
{
    return m_choices.Chance(6)
               ? AnyText()
               : Table().GetRowIDByIndex(m_choices.Below(static_cast<int>(Table().GetRowsCount())));
}

CString EditScript::AnyColumnId()
{
    return m_choices.Chance(6) ? AnyText()
                               : Table().GetFamilyColumnIDByIndex(
                                     m_choices.Below(static_cast<int>(Table().GetColumnsCount())));
}

CString EditScript::AnyText()
{
    const int choice = m_choices.Below(static_cast<int>(kTexts.size()) + 8);
    return choice < static_cast<int>(kTexts.size()) ? kTexts[static_cast<std::size_t>(choice)]
                                                    : m_choices.Text();
}

CString EditScript::AnyLanguage()
{
    constexpr const wchar_t* kLanguages[] = {L"en", L"de", L"", L"none"};
    return kLanguages[m_choices.Below(4)];
}

int EditScript::AnyIndex(uint64_t count)
{
    return m_choices.Below(static_cast<int>(count) + 3) - 1;
}

XMLNode EditScript::AnyNode(const XMLNode& root)
{
    XMLNode node = root;
    XMLNode child;
    while (m_choices.Chance(2) && node.GetChildNodeByIdx(m_choices.Below(6), child)) {
        node = child;
    }
    return node;
}

} // namespace encap::fuzz
