#include "encap/mapping/MemberColToTemplate.h"

#include "encap/family/Vocabulary.h"
#include "encap/foundation/NullText.h"
#include "encap/foundation/NumberText.h"
#include "encap/mapping/MapEdit.h"
#include "encap/mapping/MapWalk.h"
#include "encap/platform/Encoding.h"

namespace vocabulary = encap::vocabulary;

namespace {

using encap::platform::WideToUtf8;

std::vector<XMLNode> EntriesOf(const XMLNode& columnMap)
{
    std::vector<XMLNode> entries;
    encap::ForEachGrandchild(encap::Raw(columnMap), vocabulary::kTemplatesParameter.utf8,
                             vocabulary::kTemplateParameter.utf8, [&entries](IXMLDOMNode* entry) {
                                 entries.push_back(encap::Wrap(entry));
                             });
    return entries;
}

} // namespace

CEncapMemberColToTemplate::CEncapMemberColToTemplate() = default;

CEncapMemberColToTemplate::CEncapMemberColToTemplate(const XMLNode& node,
                                                     CEncapFamilyMapping* mapping)
    : m_node(node), m_mapping(mapping)
{
}

CEncapMemberColToTemplate::~CEncapMemberColToTemplate() = default;

void CEncapMemberColToTemplate::GetColumnName(CString& columnId) const
{
    m_node.GetProperty(vocabulary::kTableColumn, columnId);
}

std::vector<CEncapMemberColToTemplate::Entry> CEncapMemberColToTemplate::GetMappings() const
{
    std::vector<Entry> mappings;
    for (const XMLNode& node : EntriesOf(m_node)) {
        Entry entry;
        if (node.GetProperty(vocabulary::kTemplateName, entry.templateName) &&
            node.GetProperty(vocabulary::kParameterId, entry.parameterId)) {
            mappings.push_back(std::move(entry));
        }
    }
    return mappings;
}

void CEncapMemberColToTemplate::AddMapping(const wchar_t* templateName, int parameterId)
{
    XMLNode entry;
    if (FindEntry(templateName, parameterId, entry)) {
        return;
    }
    encap::MapEdit edit(m_mapping);
    entry = m_node.GetOrAddNode(vocabulary::kTemplatesParameter)
                .AddNode(vocabulary::kTemplateParameter, nullptr, vocabulary::kTemplateName,
                         encap::TextOrEmpty(templateName), vocabulary::kParameterId,
                         encap::FormatInteger(parameterId).c_str());
    edit.Added(entry);
}

void CEncapMemberColToTemplate::DeleteMapping(const wchar_t* templateName, int parameterId)
{
    XMLNode entry;
    if (!FindEntry(templateName, parameterId, entry)) {
        return;
    }
    encap::MapEdit edit(m_mapping);
    edit.Removing(entry);
    entry.RemoveThisNode(true);
}

void CEncapMemberColToTemplate::DeleteAllMapping()
{
    encap::MapEdit edit(m_mapping);
    m_node.GetOrAddNode(vocabulary::kTemplatesParameter);
    for (XMLNode& entry : EntriesOf(m_node)) {
        edit.Removing(entry);
        entry.RemoveThisNode(true);
    }
}

void CEncapMemberColToTemplate::RemoveNodeFromXML()
{
    encap::MapEdit edit(m_mapping);
    edit.Removing(m_node);
    m_node.RemoveThisNode(false);
}

bool CEncapMemberColToTemplate::FindEntry(const wchar_t* templateName, int parameterId,
                                          XMLNode& entry) const
{
    const std::string name = WideToUtf8(encap::TextOrEmpty(templateName));
    const std::string id = WideToUtf8(encap::FormatInteger(parameterId));
    for (const XMLNode& candidate : EntriesOf(m_node)) {
        if (encap::AttributeEquals(candidate, vocabulary::kTemplateName.utf8, name) &&
            encap::AttributeEquals(candidate, vocabulary::kParameterId.utf8, id)) {
            entry = candidate;
            return true;
        }
    }
    return false;
}
