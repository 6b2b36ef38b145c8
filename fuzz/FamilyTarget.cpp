#include "fuzz/FamilyReading.h"
#include "fuzz/Support.h"
#include "fuzz/Targets.h"

namespace encap::fuzz {
namespace {

constexpr const wchar_t* kLocalizedFamily =
    L"<Family InternalName='n' DisplayName='d'>"
    L"<Categories><Category InternalName='c' Hidden='false'>"
    L"<CategoryParameter InternalName='text' ValueLocalized='true'/>"
    L"<CategoryParameter InternalName='05415f3d-3907-474b-a020-eb9d644f4cf3' "
    L"ValueLocalized='true'/></Category></Categories>"
    L"<FamilyTable><Columns>"
    L"<Column ColumnId='T' Title='t' Hidden='false' ValueType='string'/>"
    L"<Column ColumnId='D' Title='d' ValueType='double' UnitType='mm' ColumnwideValue='2*{E}'/>"
    L"<Column ColumnId='E' Title='e' ValueType='double' UnitType='in'/></Columns>"
    L"<Rows><Row RowId='r1'><Cell ColumnId='E'>3</Cell></Row><Row RowId='r2'/></Rows>"
    L"</FamilyTable><ParameterMap><MemberParametersMap><ParamsToColumn>"
    L"<ParamToColumn TableColumn='T'><CategoryParameterRef Category='c' "
    L"CategoryParameter='text'/></ParamToColumn>"
    L"<ParamToColumn TableColumn='E'><CategoryParameterRef Category='c' "
    L"CategoryParameter='text'/></ParamToColumn>"
    L"</ParamsToColumn></MemberParametersMap></ParameterMap></Family>";

/// What a host does with texts that it was sent: open, read, save.
void Use(const CString& family, const std::vector<CString>& strings, bool localizes)
{
    CEncapFamily opened(family.c_str(), strings, L"", &SharedProvider(), localizes);
    const CString said = ReadEverything(opened);
    Require(RequireSavedDocumentsHold(opened) == said, "equal documents give equal answers");
}

} // namespace

void RunFamily(std::string_view input)
{
    const auto [family, rest] = SplitAt(input, '\0');
    std::vector<CString> strings;
    for (std::string_view left = rest; !left.empty() && strings.size() < 8;) {
        const auto [document, others] = SplitAt(left, '\0');
        strings.push_back(XmlOf(ParseBytes(document)));
        left = others;
    }
    Use(XmlOf(ParseBytes(family)), strings, input.size() % 2 == 1);
}

void RunStrings(std::string_view input)
{
    const CString text = XmlOf(ParseBytes(input));
    Use(kLocalizedFamily, {text, L"<S xml:lang='de'/>"}, false);

    CEncapFamily family(kLocalizedFamily, {L"<S xml:lang='en'/>", text}, L"", nullptr, false);
    CString language;
    XMLParser document;
    family.GetStringsFamilyXML(1, document);
    document.GetRootNode().GetProperty(L"xml:lang", language);
    family.SetLocalizedCellValue(L"T", L"r1", L"set", language.c_str());
    family.SetLocalizedColumnPropertyValue(L"D", L"Title", L"set", language.c_str());
    family.SetDisplayName(L"set");
    CString value;
    const bool isTaken = family.GetFamStringsCount() == 2;
    family.GetLocalizedCellValue(L"T", L"r1", language.c_str(), value);
    Require(!isTaken || value == L"set", "a cell's text is read as it was set");
    RequireSavedDocumentsHold(family);
    family.DeleteLocalizedColumnCells(L"T", true);
    family.DeleteLocalizedCellsValues(L"r1", L"", true);
    family.DeleteLocalizedColumnPropertyValues(L"D");
    Require(family.GetLocalizedCellValue(L"T", L"r1", language.c_str(), value) == 1,
            "a deleted text is gone");
    RequireSavedDocumentsHold(family);
}

} // namespace encap::fuzz
