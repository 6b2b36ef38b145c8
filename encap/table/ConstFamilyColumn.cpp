#include "encap/table/ConstFamilyColumn.h"

#include "encap/family/Family.h"
#include "encap/table/FamilyTable.h"

CEncapConstFamilyColumn::CEncapConstFamilyColumn(CEncapFamilyTable* table,
                                                 const CString& categoryParameter,
                                                 const CString& value)
    : m_categoryParameter(categoryParameter), m_value(value)
{
    m_table = table;
}

CTableEvaluator::EvaluateResult CEncapConstFamilyColumn::GetValue(const wchar_t*, CString& value)
{
    value = m_value;
    return CTableEvaluator::EvaluateOK;
}

void CEncapConstFamilyColumn::SetValue(const wchar_t*, const wchar_t* value, bool)
{
    if (m_table != nullptr && m_table->GetFamily() != nullptr) {
        m_table->GetFamily()->SetCatParamConstValue(m_categoryParameter.c_str(), value);
    }
}
