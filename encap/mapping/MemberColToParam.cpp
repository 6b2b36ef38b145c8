#include "encap/mapping/MemberColToParam.h"

#include "encap/family/Vocabulary.h"
#include "encap/foundation/CaseFolding.h"
#include "encap/foundation/NullText.h"
#include "encap/mapping/MapEdit.h"
#include "encap/mapping/MapWalk.h"

namespace vocabulary = encap::vocabulary;

namespace {

/// The identifier in the first "CategoryParameterRef" of an element; false when there is none.
bool GetFirstParameter(const XMLNode& element, CString& id)
{
    const XMLNode reference = encap::Wrap(
        encap::FirstChildElement(encap::Raw(element), vocabulary::kCategoryParameterRef.utf8));
    return reference.GetProperty(vocabulary::kCategoryParameter, id);
}

} // namespace

CEncapMemberColToParam::CEncapMemberColToParam() = default;

CEncapMemberColToParam::CEncapMemberColToParam(const XMLNode& node, CEncapFamilyMapping* mapping)
    : m_nodes{node}, m_mapping(mapping)
{
}

CEncapMemberColToParam::~CEncapMemberColToParam() = default;

void CEncapMemberColToParam::GetColumnName(CString& columnId) const
{
    if (!m_nodes.empty()) {
        m_nodes.front().GetProperty(vocabulary::kTableColumn, columnId);
    }
}

bool CEncapMemberColToParam::AddCategoryParam(XMLNode& element)
{
    CString id;
    if (!GetFirstParameter(element, id) || IsMappedForCatParam(id.c_str())) {
        return false;
    }
    m_nodes.push_back(element);
    if (m_idsReading == Reading()) {
        EnterIds(element);
    }
    return true;
}

bool CEncapMemberColToParam::RemoveCategoryParam(const wchar_t* categoryParameter)
{
    const std::wstring_view id = encap::TextOrEmpty(categoryParameter);
    encap::MapEdit edit(m_mapping);
    std::vector<XMLNode> kept;
    kept.reserve(m_nodes.size());
    CString own;
    for (XMLNode& node : m_nodes) {
        if (GetFirstParameter(node, own) && encap::EqualNoCase(own, id)) {
            edit.Removing(node);
            node.RemoveThisNode(true);
        } else {
            kept.push_back(std::move(node));
        }
    }
    m_nodes = std::move(kept);
    m_idsReading = 0;
    return true;
}

bool CEncapMemberColToParam::GetCategoryParams(std::vector<CString>& ids) const
{
    ids.clear();
    CString id;
    for (const XMLNode& node : m_nodes) {
        if (GetFirstParameter(node, id)) {
            ids.push_back(id);
        }
    }
    return !ids.empty();
}

bool CEncapMemberColToParam::IsMappedForCatParam(const wchar_t* categoryParameter) const
{
    const uint64_t reading = Reading();
    if (m_idsReading != reading) {
        m_ids.clear();
        for (const XMLNode& node : m_nodes) {
            EnterIds(node);
        }
        m_idsReading = reading;
    }
    return m_ids.contains(encap::TextOrEmpty(categoryParameter));
}

int CEncapMemberColToParam::ParamCount() const
{
    return static_cast<int>(m_nodes.size());
}

void CEncapMemberColToParam::RemoveNodesFromXML()
{
    encap::MapEdit edit(m_mapping);
    for (XMLNode& node : m_nodes) {
        edit.Removing(node);
        node.RemoveThisNode(true);
    }
    m_nodes.clear();
    m_idsReading = 0;
}

uint64_t CEncapMemberColToParam::Reading() const
{
    encap::MappingIndex* index = encap::MappingAccess::Index(m_mapping);
    if (index != nullptr) {
        return index->Clock().Reading();
    }
    return m_nodes.empty() ? 1 : 1 + encap::ChangeCount(m_nodes.front());
}

void CEncapMemberColToParam::EnterIds(const XMLNode& element) const
{
    encap::ForEachChild(
        encap::Raw(element), vocabulary::kCategoryParameterRef.utf8,
        [this](IXMLDOMNode* reference) {
            CString id;
            if (encap::Wrap(reference).GetProperty(vocabulary::kCategoryParameter, id)) {
                m_ids.insert(std::move(id));
            }
        });
}
