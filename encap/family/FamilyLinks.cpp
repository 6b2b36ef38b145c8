#include "encap/family/Family.h"

#include "encap/family/FamilyStrings.h"
#include "encap/family/Vocabulary.h"
#include "encap/foundation/CaseFolding.h"
#include "encap/mapping/FamilyMapping.h"
#include "encap/table/FamilyColumn.h"
#include "encap/table/FamilyTable.h"

using namespace encap;

void CEncapFamily::SetLink(CEncapFamily* source, bool active)
{
    if (source == nullptr || source == this || m_table == nullptr || source->m_table == nullptr ||
        source->IsLinked() || !CopySourceRevisions(*source)) {
        return;
    }
    CString text;
    source->GetLibInterName(text);
    WriteAttribute(vocabulary::kFromSource, text.c_str());
    source->GetInternalName(text);
    WriteAttribute(vocabulary::kSourceMoniker, text.c_str());
    m_document.GetRootNode().SetStrBoolProperty(vocabulary::kSrcActive, active);
}

bool CEncapFamily::CopySourceRevisions(CEncapFamily& source)
{
    if (m_table->GetFamilyColumnByID(vocabulary::kSourceMemberRevisionColumn) != nullptr) {
        return true;
    }
    CEncapFamilyTable& sourceTable = *source.m_table;
    if (sourceTable.GetFamilyColumnByID(vocabulary::kMemberRevisionColumn) == nullptr ||
        m_table->CreateSourceMemberRevisionColumn() == nullptr) {
        return false;
    }
    // A read may call the host, and the host may edit: rows and columns are found anew each time.
    const std::vector<CString> rows = m_table->GetAllRowIDs();
    CString revision;
    for (const CString& row : rows) {
        if (sourceTable.GetValue(row.c_str(), vocabulary::kMemberRevisionColumn, revision) !=
            CTableEvaluator::EvaluateOK) {
            return false;
        }
        m_table->SetValue(row.c_str(), vocabulary::kSourceMemberRevisionColumn, revision.c_str(),
                          false);
    }
    return true;
}

void CEncapFamily::ClearLink()
{
    XMLNode root = m_document.GetRootNode();
    if (!root.IsNode()) {
        return;
    }
    // The attributes go first: deleting the column bumps revisions, which would make the column
    // again in a family that still counts as linked.
    root.RemoveProperty(vocabulary::kSourceMoniker);
    root.RemoveProperty(vocabulary::kFromSource);
    root.RemoveProperty(vocabulary::kSrcActive);
    if (m_table != nullptr) {
        m_table->DeleteColumn(
            m_table->GetFamilyColumnIndexByID(vocabulary::kSourceMemberRevisionColumn));
    }
}

void CEncapFamily::RemoveUnnecessaryHiddenDomains()
{
    XMLNode categories;
    XMLNode root = m_document.GetRootNode();
    if (!root.GetChildNode(vocabulary::kCategories, categories)) {
        return;
    }
    XMLNodeArray children;
    categories.GetChildNodes(vocabulary::kCategory, children);
    bool removed = false;
    for (XMLNode& category : children) {
        removed = RemoveHiddenCategory(category) || removed;
    }
    if (removed) {
        CollectCategoryParameters(root);
        if (m_mapping != nullptr) {
            m_mapping->ForgetLocalizedColumns();
        }
    }
}

bool CEncapFamily::RemoveHiddenCategory(XMLNode& category)
{
    bool hidden = false;
    CString name;
    if (!category.GetStrBoolProperty(vocabulary::kHidden, hidden) || !hidden ||
        !category.GetProperty(vocabulary::kInternalName, name) ||
        EqualNoCase(name, vocabulary::kPermanentHiddenCategory.View())) {
        return false;
    }
    XMLNodeArray parameters;
    category.GetChildNodes(vocabulary::kCategoryParameter, parameters);
    for (const XMLNode& parameter : parameters) {
        CString id;
        if (parameter.GetProperty(vocabulary::kInternalName, id)) {
            ReleaseCategoryParameter(id);
        }
    }
    return category.RemoveThisNode(true);
}

void CEncapFamily::ReleaseCategoryParameter(const CString& id)
{
    if (m_mapping == nullptr || m_table == nullptr) {
        return;
    }
    CString columnId;
    if (!m_mapping->GetCategoryParamColumn(id.c_str(), columnId)) {
        m_mapping->RemoveParamToConstantMapping(id.c_str());
        ForgetCategoryParamColumn(id.c_str());
        return;
    }
    const CEncapFamilyColumn* column = m_table->GetFamilyColumnByID(columnId.c_str());
    if (column != nullptr && column->IsHidden() &&
        !EqualNoCase(columnId, vocabulary::kRidColumn.View()) && !column->IsReferencedByOther()) {
        m_table->DeleteColumn(m_table->GetFamilyColumnIndexByID(columnId.c_str()));
    } else {
        m_mapping->RemoveParamToColumnMapping(id.c_str());
        ForgetCategoryParamColumn(id.c_str());
    }
}
