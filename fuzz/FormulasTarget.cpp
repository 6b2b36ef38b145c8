#include "encap/family/Family.h"
#include "encap/foundation/NumberText.h"
#include "encap/foundation/RangeParser.h"
#include "encap/foundation/StringUtil.h"
#include "encap/platform/Encoding.h"
#include "encap/table/FamilyTable.h"
#include "fuzz/FamilyReading.h"
#include "fuzz/Support.h"
#include "fuzz/Targets.h"

namespace encap::fuzz {
namespace {

constexpr const wchar_t* kFamily =
    L"<F><Categories><Category InternalName='c'><CategoryParameter InternalName='t' "
    L"ValueLocalized='true'/></Category></Categories><FamilyTable><Columns>"
    L"<Column ColumnId='R' ValueType='double' UnitType='mm'/>"
    L"<Column ColumnId='I' ValueType='integer' UnitType='ul'/>"
    L"<Column ColumnId='B' ValueType='boolean'/>"
    L"<Column ColumnId='S' ValueType='string'/>"
    L"<Column ColumnId='C' ValueType='double' UnitType='in' Custom='true'/>"
    L"<Column ColumnId='M' ValueType='string'/>"
    L"<Column ColumnId='V' ValueType='double' UnitType='cm' ColumnwideValue='{R}*2'/></Columns>"
    L"<Rows><Row RowId='r1'><Cell ColumnId='R'>2.5</Cell><Cell ColumnId='I'>7</Cell></Row>"
    L"<Row RowId='r2'/></Rows></FamilyTable>"
    L"<ParameterMap><MemberParametersMap><ParamsToColumn><ParamToColumn TableColumn='M'>"
    L"<CategoryParameterRef CategoryParameter='818a152a-d3c3-49ca-80ee-df7d91421b8e'/>"
    L"</ParamToColumn></ParamsToColumn></MemberParametersMap></ParameterMap></F>";

void ReadAsText(const CString& text)
{
    const CRangeParser range(text.c_str());
    CString value;
    Require(range.GetStrValue(value, L',') || value.empty(), "a range that is not valid is empty");
    for (const CString& part :
         {range.getMin(), range.getMax(), range.getStep(), range.getDefault()}) {
        Require(part.size() <= text.size(), "a part is no longer than its range");
    }
    const LeadingNumber number = ReadLeadingNumber(text);
    Require(number.consumed <= text.size(), "a number is no longer than its text");
    CStringArray pieces;
    CStringUtil::Split(text, text.substr(0, 1), pieces, L"e");
    CStringUtil::ExtractByBracket(text, L"{};", L"]", &pieces);
    CString cell = text;
    CStringUtil::ReplaceDecimalPointOfCell(cell);
    CStringUtil::TrimDoubleString(cell);
    CStringUtil::LegalizeForFileName(cell);
    for (const bool toPoint : {true, false}) {
        const CString marked = CStringUtil::ReplaceDecimalPointOfColumnExpression(text, toPoint);
        Require(marked.size() == text.size(), "another decimal mark is as long");
    }
    Require(CStringUtil::TranslateStringSymbol(text).size() <= text.size(), "a join adds nothing");
    Require(!CStringUtil::IsNumericValue(text) || !CStringUtil::IsLogicalValue(text.c_str()) ||
                text == L"0" || text == L"1",
            "only two numbers are logical values");
}

} // namespace

void RunFormulas(std::string_view input)
{
    // Null pointers end texts, so only what stands before a zero reaches the table.
    const CString text = platform::Utf8ToWide(input).c_str();
    ReadAsText(text);
    CEncapFamily family(kFamily, {L"<S xml:lang='en'/>"}, L"", &SharedProvider(),
                        input.size() % 3 == 0);
    CEncapFamilyTable& table = *family.GetEncapFamilyTable();
    for (const wchar_t* id : {L"R", L"I", L"B", L"S", L"C", L"M"}) {
        CEncapFamilyColumn& column = *table.GetFamilyColumnByID(id);
        const CString before = XmlOf(family.GetFamilyXML());
        const bool isValid = table.IsFormulaValid(id, text.c_str()) == 0;
        const bool isTaken = column.SetFormula(text.c_str(), L"en") == 0;
        Require(isTaken || XmlOf(family.GetFamilyXML()) == before,
                "a refused formula changes nothing");
        Require(isTaken || !isValid || column.IsCustom(), "a valid formula is taken");
        Require(column.CheckCircularDependency(nullptr) == 0, "no formula makes a cycle");
        table.IsCellValueValid(L"r1", id, text.c_str());
        table.CheckRangeColumnData(id, text.c_str());
    }
    Require(!ReadEverything(family).empty(), "a family always answers");
    for (const wchar_t* id : {L"R", L"I", L"B", L"S", L"C", L"M"}) {
        table.SetValue(L"r1", id, text.c_str(), true);
        table.ClearCachedValue(L"r1", id);
    }
    RequireSavedDocumentsHold(family);
    table.ValidateAndRepairColumnData(table.GetFamilyColumnByID(L"R"));
    RequireSavedDocumentsHold(family);
}

} // namespace encap::fuzz
