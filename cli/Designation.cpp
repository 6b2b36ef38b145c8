#include "cli/Designation.h"

#include "cli/FailureReport.h"
#include "cli/OpenFamily.h"
#include "encap/foundation/CaseFolding.h"
#include "encap/table/FamilyTable.h"
#include "encap/xml/XMLNodeArray.h"

#include <algorithm>

namespace encap::cli {
namespace {

constexpr const wchar_t* kMnemonic = L"DESIGNATION";

/// Null when the family has no such column.
CEncapFamilyColumn* DesignationColumn(CEncapFamily& family)
{
    XMLNodeArray parameters;
    family.GetFamilyXML().GetRootNode().SelectChildNodes(L"Categories/Category//CategoryParameter",
                                                         parameters);
    for (const XMLNode& parameter : parameters) {
        CString mnemonic;
        CString id;
        parameter.GetProperty(L"Mnemonic", mnemonic);
        if (EqualNoCase(mnemonic, kMnemonic) && parameter.GetProperty(L"InternalName", id)) {
            if (CEncapFamilyColumn* column = family.GetCategoryParamColumn(id.c_str())) {
                return column;
            }
        }
    }
    return nullptr;
}

} // namespace

Designation::Designation(const OpenFamily& family) : m_family(family)
{
    if (CEncapFamilyColumn* column = DesignationColumn(family.Family())) {
        m_columns.push_back(column);
        return;
    }
    m_columns = family.Table().GetKeyColumns();
    std::stable_sort(m_columns.begin(), m_columns.end(),
                     [](const CEncapFamilyColumn* left, const CEncapFamilyColumn* right) {
                         return left->GetKeyWeight() < right->GetKeyWeight();
                     });
}

CString Designation::Of(const CString& rowId) const
{
    CString designation;
    CString value;
    for (CEncapFamilyColumn* column : m_columns) {
        const auto result = column->GetValue(rowId.c_str(), m_family.Language().c_str(), value);
        if (!HasNoValue(result) && !value.empty()) {
            designation += (designation.empty() ? L"" : L", ") + value;
        }
    }
    return designation;
}

} // namespace encap::cli
