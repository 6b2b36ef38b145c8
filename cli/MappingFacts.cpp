#include "cli/MappingFacts.h"

#include "cli/ColumnFacts.h"
#include "cli/NodeReads.h"
#include "encap/family/Family.h"
#include "encap/foundation/StringMap.h"
#include "encap/mapping/FamilyMapping.h"
#include "encap/table/FamilyTable.h"

#include <map>
#include <set>
#include <unordered_map>

namespace encap::cli {
namespace {

using Parameters = std::vector<CEncapFamilyTemplateParameter*>;

/// Reads one family: the maps first, then the templates, whose parameters tell what drives them.
class MappingReader {
public:
    explicit MappingReader(CEncapFamily& family);

    MappingFacts Read();

private:
    struct Drivers {
        std::vector<CString> columns;
        std::vector<CString> constants;
    };

    void ReadDefinitions();
    void EnterTableColumns();
    ColumnMapping& ColumnOf(const OptionalText& id);
    void ReadColumnMap(const XMLNode& map);
    DrivenParameter ReadDriven(const XMLNode& entry, const CEncapFamilyTemplateParameter*& found);
    CString Resolve(const XMLNode& entry, DrivenParameter& driven,
                    const CEncapFamilyTemplateParameter*& found);
    CategoryParameter ReadCategoryParameter(const XMLNode& element);
    void ReadSupplied(const XMLNode& element);
    void ReadConstant(const XMLNode& element);
    void ReadLocalizedConstants();
    ConstantMapping& ConstantOf(const CString& id);
    TemplateFacts ReadTemplate(const XMLNode& element);
    std::vector<TemplateParameter> ReadLevel(const XMLNode& parent, const Parameters* loaded);
    CString Match(const XMLNode& element, std::map<int, CEncapFamilyTemplateParameter*>& left,
                  CEncapFamilyTemplateParameter*& found) const;

    CEncapFamily& m_family;
    CEncapFamilyMapping& m_mapping;
    XMLNode m_root;
    MappingFacts m_facts;
    std::unordered_map<CString, OptionalText> m_mnemonics;
    CStringMapTo<std::size_t> m_columns;
    CStringMapTo<bool> m_mappedColumns;
    CStringMapTo<CString> m_suppliers;
    std::unordered_map<CString, std::size_t> m_constants;
    CStringMapTo<bool> m_templates;
    CEncapFamilyTemplate* m_template = nullptr; // whose parameters are being read
    std::unordered_map<const CEncapFamilyTemplateParameter*, Drivers> m_drivers;
};

OptionalText Attribute(const XMLNode& node, const wchar_t* name)
{
    CString text;
    return node.GetProperty(name, text) ? OptionalText(text) : std::nullopt;
}

XMLNodeArray ChildrenOf(const XMLNode& node, const wchar_t* name)
{
    XMLNodeArray nodes;
    node.GetChildNodes(name, nodes);
    return nodes;
}

/// The "TemplateParameter" entries of a map.
std::vector<XMLNode> EntriesOf(const XMLNode& map)
{
    std::vector<XMLNode> entries;
    for (const XMLNode& list : ChildrenOf(map, L"TemplatesParameter")) {
        const XMLNodeArray children = ChildrenOf(list, L"TemplateParameter");
        entries.insert(entries.end(), children.begin(), children.end());
    }
    return entries;
}

ModelObject ObjectOf(const XMLNode& parameter)
{
    return {Attribute(parameter, L"ObjectType"), Attribute(parameter, L"ObjectReferenceKey"),
            Attribute(parameter, L"SubObjectId")};
}

ModelObject ObjectOf(const CEncapFamilyTemplateParameter& parameter)
{
    CString type;
    CString referenceKey;
    CString subObjectId;
    parameter.GetObjectType(type);
    parameter.GetObjectReferenceKey(referenceKey);
    parameter.GetSubObjectId(subObjectId);
    return {type, referenceKey, subObjectId};
}

MappingReader::MappingReader(CEncapFamily& family)
    : m_family(family), m_mapping(*family.GetEncapFamilyMapping()),
      m_root(family.GetFamilyXML().GetRootNode())
{
}

MappingFacts MappingReader::Read()
{
    ReadDefinitions();
    EnterTableColumns();
    XMLNode map;
    m_root.GetChildNode(L"ParameterMap", map);
    for (const wchar_t* path : {L"MemberParametersMap/ColumnsToTemplate/ColumnToTemplate",
                                L"ColumnsToTemplate/ColumnToTemplate"}) {
        for (const XMLNode& element : Selected(map, path)) {
            ReadColumnMap(element);
        }
    }
    for (const XMLNode& element :
         Selected(map, L"MemberParametersMap/ParamsToColumn/ParamToColumn")) {
        ReadSupplied(element);
    }
    for (const XMLNode& element :
         Selected(map, L"FamilyParametersMap/ParamsToTemplate/ParamTemplateValue")) {
        ReadConstant(element);
    }
    ReadLocalizedConstants();
    XMLNode templates;
    m_root.GetChildNode(L"FamilyTemplates", templates);
    for (const XMLNode& element : ChildrenOf(templates, L"FamilyTemplate")) {
        m_facts.templates.push_back(ReadTemplate(element));
    }
    return std::move(m_facts);
}

void MappingReader::ReadDefinitions()
{
    for (const XMLNode& node : Selected(m_root, L"Categories/Category//CategoryParameter")) {
        if (const OptionalText id = Attribute(node, L"InternalName")) {
            m_mnemonics.emplace(*id, Attribute(node, L"Mnemonic"));
        }
    }
}

void MappingReader::EnterTableColumns()
{
    for (const CEncapFamilyColumn* column : ColumnsOf(*m_family.GetEncapFamilyTable())) {
        const CString id = IdOf(*column);
        m_columns.emplace(id, m_facts.columns.size());
        m_facts.columns.push_back({id, {}, {}, {}});
    }
}

/// The entry of a column; for one that the table does not have, a new one behind the others.
ColumnMapping& MappingReader::ColumnOf(const OptionalText& id)
{
    if (!id) {
        m_facts.columns.push_back({id, {}, {}, L"the map names no column"});
        return m_facts.columns.back();
    }
    const auto [entry, isNew] = m_columns.emplace(*id, m_facts.columns.size());
    if (isNew) {
        m_facts.columns.push_back({id, {}, {}, L"the table has no such column"});
    }
    return m_facts.columns[entry->second];
}

void MappingReader::ReadColumnMap(const XMLNode& map)
{
    const OptionalText id = Attribute(map, L"TableColumn");
    ColumnMapping& column = ColumnOf(id);
    const bool isRead = id && m_mappedColumns.emplace(*id, true).second;
    std::set<const CEncapFamilyTemplateParameter*> driven;
    for (const XMLNode& entry : EntriesOf(map)) {
        const CEncapFamilyTemplateParameter* found = nullptr;
        column.drives.push_back(ReadDriven(entry, found));
        CString& problem = column.drives.back().problem;
        if (id && !isRead) {
            problem = L"the column has a map before this one";
        } else if (found != nullptr && !driven.insert(found).second) {
            problem = L"the column drives it already";
        } else if (found != nullptr && id) {
            m_drivers[found].columns.push_back(*column.id);
        }
    }
}

DrivenParameter MappingReader::ReadDriven(const XMLNode& entry,
                                          const CEncapFamilyTemplateParameter*& found)
{
    DrivenParameter driven;
    driven.templateName = Attribute(entry, L"TemplateName");
    driven.parameterId = Attribute(entry, L"ParameterId");
    driven.problem = Resolve(entry, driven, found);
    if (found != nullptr) {
        driven.object = ObjectOf(*found);
    }
    return driven;
}

/// Finds the parameter that an entry names, or says why there is none.
CString MappingReader::Resolve(const XMLNode& entry, DrivenParameter& driven,
                               const CEncapFamilyTemplateParameter*& found)
{
    if (!driven.templateName) {
        return L"the entry names no template";
    }
    if (!driven.parameterId) {
        return L"the entry names no parameter";
    }
    int id = 0;
    if (!entry.GetProperty(L"ParameterId", id)) {
        return L"the parameter id is no whole number of 32 bits";
    }
    const CEncapFamilyTemplate* familyTemplate =
        m_mapping.GetFamilyTemplate(driven.templateName->c_str());
    if (familyTemplate == nullptr) {
        return L"there is no such template";
    }
    found = familyTemplate->GetParameter(id);
    return found != nullptr ? L"" : L"the template has no such parameter";
}

CategoryParameter MappingReader::ReadCategoryParameter(const XMLNode& element)
{
    CategoryParameter parameter;
    XMLNode reference;
    element.GetChildNode(L"CategoryParameterRef", reference);
    parameter.id = Attribute(reference, L"CategoryParameter");
    parameter.category = Attribute(reference, L"Category");
    if (!parameter.id) {
        parameter.problem = L"the entry names no category parameter";
        return parameter;
    }
    const auto definition = m_mnemonics.find(*parameter.id);
    if (definition != m_mnemonics.end()) {
        parameter.mnemonic = definition->second;
    }
    return parameter;
}

void MappingReader::ReadSupplied(const XMLNode& element)
{
    const OptionalText columnId = Attribute(element, L"TableColumn");
    ColumnMapping& column = ColumnOf(columnId);
    CategoryParameter parameter = ReadCategoryParameter(element);
    if (columnId && parameter.id) {
        const auto [first, isNew] = m_suppliers.emplace(*parameter.id, *column.id);
        if (!isNew) {
            parameter.problem = L"column " + first->second + L" supplies it already";
        }
    }
    column.supplies.push_back(std::move(parameter));
}

void MappingReader::ReadConstant(const XMLNode& element)
{
    ConstantMapping constant;
    constant.parameter = ReadCategoryParameter(element);
    constant.value = Attribute(element, L"ConstantValue");
    const OptionalText& id = constant.parameter.id;
    if (id) {
        constant.isLocalized = m_family.IsCatParamLocalized(id->c_str());
        if (!m_constants.emplace(*id, m_facts.constants.size()).second) {
            constant.parameter.problem = L"the category parameter has a constant before this one";
        }
    }
    std::set<const CEncapFamilyTemplateParameter*> driven;
    for (const XMLNode& entry : EntriesOf(element)) {
        const CEncapFamilyTemplateParameter* found = nullptr;
        constant.drives.push_back(ReadDriven(entry, found));
        if (found != nullptr && !driven.insert(found).second) {
            constant.drives.back().problem = L"the constant drives it already";
        } else if (found != nullptr) {
            m_drivers[found].constants.push_back(id.value_or(CString()));
        }
    }
    m_facts.constants.push_back(std::move(constant));
}

/// The first constant of a category parameter, a new one when there is none.
ConstantMapping& MappingReader::ConstantOf(const CString& id)
{
    const auto [entry, isNew] = m_constants.emplace(id, m_facts.constants.size());
    if (isNew) {
        ConstantMapping constant;
        constant.parameter.id = id;
        const auto definition = m_mnemonics.find(id);
        if (definition != m_mnemonics.end()) {
            constant.parameter.mnemonic = definition->second;
        }
        constant.isLocalized = m_family.IsCatParamLocalized(id.c_str());
        m_facts.constants.push_back(std::move(constant));
    }
    return m_facts.constants[entry->second];
}

void MappingReader::ReadLocalizedConstants()
{
    XMLParser document;
    for (int i = 0; m_family.GetStringsFamilyXML(i, document); ++i) {
        const XMLNode root = document.GetRootNode();
        const CString language = Attribute(root, L"xml:lang").value_or(CString());
        std::set<CString> read;
        for (const XMLNode& node : Selected(root, L"ConstantValues/ConstantValue")) {
            const OptionalText id = Attribute(node, L"CategoryParameter");
            if (id && read.insert(*id).second) {
                CString value;
                node.GetNodeText(value);
                ConstantOf(*id).localizedValues.emplace_back(language, value);
            }
        }
    }
}

TemplateFacts MappingReader::ReadTemplate(const XMLNode& element)
{
    TemplateFacts facts;
    facts.name = Attribute(element, L"Name");
    facts.fileName = Attribute(element, L"FileName");
    if (!facts.name) {
        facts.problem = L"the template has no name";
    } else if (!m_templates.emplace(*facts.name, true).second) {
        facts.problem = L"there is a template of that name before this one";
    }
    Parameters loaded;
    m_template = nullptr;
    if (facts.problem.empty()) {
        m_template = m_mapping.GetFamilyTemplate(facts.name->c_str());
        loaded = m_template->GetParameters();
    }
    facts.parameters = ReadLevel(element, m_template != nullptr ? &loaded : nullptr);
    return facts;
}

/// The parameters directly below an element. loaded: those of them that the library has; null where
/// it has passed over the element itself, which then says why.
std::vector<TemplateParameter> MappingReader::ReadLevel(const XMLNode& parent,
                                                        const Parameters* loaded)
{
    std::map<int, CEncapFamilyTemplateParameter*> left;
    for (CEncapFamilyTemplateParameter* parameter : loaded != nullptr ? *loaded : Parameters()) {
        left.emplace(parameter->GetId(), parameter);
    }
    std::vector<TemplateParameter> level;
    for (const XMLNode& element : ChildrenOf(parent, L"GeneralizedParameter")) {
        TemplateParameter parameter;
        parameter.id = Attribute(element, L"Id");
        parameter.object = ObjectOf(element);
        parameter.valueType = Attribute(element, L"ValueType");
        parameter.unit = Attribute(element, L"UnitType");
        CEncapFamilyTemplateParameter* found = nullptr;
        if (loaded != nullptr) {
            parameter.problem = Match(element, left, found);
        }
        const Parameters children = found != nullptr ? found->GetChildren() : Parameters();
        const auto drivers = m_drivers.find(found);
        if (drivers != m_drivers.end()) {
            parameter.columns = drivers->second.columns;
            parameter.constants = drivers->second.constants;
        }
        parameter.parameters = ReadLevel(element, found != nullptr ? &children : nullptr);
        level.push_back(std::move(parameter));
    }
    return level;
}

/// Takes the loaded parameter of an element out of those left, or says why there is none; also says
/// when its id finds another one.
CString MappingReader::Match(const XMLNode& element,
                             std::map<int, CEncapFamilyTemplateParameter*>& left,
                             CEncapFamilyTemplateParameter*& found) const
{
    int id = 0;
    if (!Attribute(element, L"Id")) {
        return L"the parameter has no id";
    }
    if (!element.GetProperty(L"Id", id)) {
        return L"the id is no whole number of 32 bits";
    }
    const auto entry = left.find(id);
    if (entry == left.end()) {
        return L"the id is taken before";
    }
    found = entry->second;
    left.erase(entry);
    return m_template->GetParameter(id) == found ? L"" : L"another parameter has the id too";
}

} // namespace

MappingFacts ReadMapping(CEncapFamily& family)
{
    return MappingReader(family).Read();
}

} // namespace encap::cli
