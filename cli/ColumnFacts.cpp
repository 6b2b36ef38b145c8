#include "cli/ColumnFacts.h"

#include "cli/JsonWriter.h"
#include "encap/table/FamilyTable.h"

namespace encap::cli {

std::vector<CEncapFamilyColumn*> ColumnsOf(const CEncapFamilyTable& table)
{
    std::vector<CEncapFamilyColumn*> columns;
    for (uint64_t i = 0; i < table.GetColumnsCount(); ++i) {
        columns.push_back(table.GetFamilyColumnByIndex(static_cast<int>(i)));
    }
    return columns;
}

CString IdOf(const CEncapFamilyColumn& column)
{
    CString id;
    column.GetColumnID(id);
    return id;
}

CString UnitOf(const CEncapFamilyColumn& column)
{
    CString unit;
    column.GetUnitType(unit);
    return unit;
}

CString TitleOf(const CEncapFamilyColumn& column, const CString& language)
{
    CString title;
    column.GetTitle(title, language.c_str());
    return title;
}

CString FormulaOf(const CEncapFamilyColumn& column)
{
    CString formula;
    column.GetFormula(formula);
    return formula;
}

CString TypeWordOf(const CEncapFamilyColumn& column)
{
    return DataTypes::DataTypeNum2Str(column.GetDataType());
}

bool HoldsNumbers(const CEncapFamilyColumn& column)
{
    const DataTypes::ColumnDataType type = column.GetDataType();
    return type == DataTypes::ColumnDataTypeReal || type == DataTypes::ColumnDataTypeInteger;
}

void WriteColumnMembers(JsonWriter& json, const CEncapFamilyColumn& column, const CString& language)
{
    json.Member(L"id", IdOf(column));
    json.Member(L"title", TitleOf(column, language));
    json.Member(L"type", TypeWordOf(column));
    json.Member(L"unit", UnitOf(column));
    json.Member(L"formula", FormulaOf(column));
    json.MemberBool(L"custom", column.IsCustom());
    json.MemberBool(L"hidden", column.IsHidden());
    json.MemberNumber(L"keyWeight", column.GetKeyWeight());
    json.MemberBool(L"localized", column.IsLocalized());
    json.MemberNumber(L"columnType", column.GetColumnType());
}

} // namespace encap::cli
