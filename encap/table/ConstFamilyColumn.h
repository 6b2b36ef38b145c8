#pragma once

#include "encap/table/FamilyColumn.h"

/// A column that stands for the constant value of one category parameter instead of cells. Owned
/// by the family that made it; it is in no table's column list.
class ENCAP_API CEncapConstFamilyColumn : public CEncapFamilyColumn {
public:
    CEncapConstFamilyColumn(CEncapFamilyTable* table, const CString& categoryParameter,
                            const CString& value);

    using CEncapFamilyColumn::GetValue;
    using CEncapFamilyColumn::SetValue;

    /// The constant value with result 0, whatever the row.
    CTableEvaluator::EvaluateResult GetValue(const wchar_t* rowId, CString& value) override;
    /// Makes value the category parameter's constant value in the family; this object keeps the
    /// value it was made with.
    void SetValue(const wchar_t* rowId, const wchar_t* value, bool refreshCache) override;

private:
    CString m_categoryParameter;
    CString m_value;
};
