#include "encap/host/StandaloneEvaluatorProvider.h"
#include "encap/table/FamilyTable.h"
#include "tests/support/FamilyBuilder.h"

#include <gtest/gtest.h>

using encap::test::CellText;
using encap::test::ColumnOf;
using encap::test::FamilyBuilder;

namespace {

constexpr const wchar_t* kFileNameCategory = L"8b46a4cc-9585-4fed-90c3-899f57e09a73";

} // namespace

TEST(TableExport, EvaluatesEveryCellOfACopy)
{
    CStandaloneEvaluatorProvider provider;
    const auto family = FamilyBuilder()
                            .Column({L"D", L"double", L"mm"})
                            .Column({L"V", L"double", L"mm", L"{D}*2"})
                            .Column({L"BAD", L"double", L"mm", L"{NO}"})
                            .Row(L"a", {{L"V", L"{D}+1mm"}, {L"D", L"1"}, {L"X", L"unknown"}})
                            .Row(L"b", {{L"BAD", L"kept{"}})
                            .Open(&provider);
    CString before;
    family->GetFamilyXML().GetXml(before);
    CComBSTR xml;
    ASSERT_TRUE(family->GetEncapFamilyTable()->GetEvaluatedXml(xml));
    XMLParser document{CString(xml)};
    XMLNodeArray rows;
    document.GetRootNode().SelectChildNodes(L"Rows/Row", rows);
    ASSERT_EQ(rows.size(), 2U);
    CComBSTR first;
    CComBSTR second;
    rows[0].GetXml(first);
    rows[1].GetXml(second);
    EXPECT_EQ(CString(first),
              L"<Row RowId=\"a\"><Cell ColumnId=\"V\">2</Cell><Cell ColumnId=\"D\">1"
              L"</Cell><Cell ColumnId=\"X\">unknown</Cell></Row>");
    EXPECT_EQ(CString(second), L"<Row RowId=\"b\"><Cell ColumnId=\"BAD\">kept{</Cell>"
                               L"<Cell ColumnId=\"D\"/></Row>");
    CString after;
    family->GetFamilyXML().GetXml(after);
    EXPECT_EQ(before, after);
    const CEncapFamily noId(L"<F><FamilyTable><Rows><Row/></Rows></FamilyTable></F>", {}, L"",
                            &provider, false);
    EXPECT_FALSE(noId.GetEncapFamilyTable()->GetEvaluatedXml(xml));
}

TEST(TableChecks, ValuesFitTheirColumnsTypeAndRange)
{
    CStandaloneEvaluatorProvider provider;
    const auto family =
        FamilyBuilder()
            .Column({L"L", L"double", L"mm", L"[10;20;2.5;10]", L"Custom='true'"})
            .Column({L"UP", L"double", L"mm", L"[{LOW};;;]", L"Custom='true'"})
            .Column({L"LOW", L"double", L"mm"})
            .Column({L"F", L"double", L"N", L"[{LOAD}*2;90N+10N;;]", L"Custom='true'"})
            .Column({L"LOAD", L"double", L"N", L"10"})
            .Column({L"TURN", L"double", L"deg", L"[0;{W}*10;{W};]", L"Custom='true'"})
            .Column({L"W", L"double", L"deg", L"2.5"})
            .Column({L"SQUARE", L"double", L"mm", L"[1;{LOW}*{LOW};;]", L"Custom='true'"})
            .Column({L"N", L"integer"})
            .Column({L"B", L"boolean"})
            .Column({L"S", L"string"})
            .Row(L"a", {{L"LOW", L"3"}, {L"L", L"17.5"}})
            .Row(L"b", {{L"LOW", L"7"}, {L"L", L"18"}})
            .Open(&provider);
    CEncapFamilyTable& table = *family->GetEncapFamilyTable();
    struct Case {
        const wchar_t* row;
        const wchar_t* column;
        const wchar_t* value;
        bool isValid;
    };
    const Case cases[] = {
        {L"a", L"L", L"12.5", true},     {L"a", L"L", L"12,5", true},
        {L"a", L"L", L"13", false},      {L"a", L"L", L"9", false},
        {L"a", L"L", L"20", true},       {L"a", L"L", L"20.1", false},
        {L"a", L"L", L"x", false},       {L"a", L"UP", L"5", true},
        {L"b", L"UP", L"5", false},      {L"a", L"F", L"20", true},
        {L"a", L"F", L"19", false},      {L"a", L"F", L"101", false},
        {L"a", L"TURN", L"25", true},    {L"a", L"TURN", L"26", false},
        {L"a", L"TURN", L"7", false},    {L"a", L"SQUARE", L"9", true},
        {L"a", L"SQUARE", L"10", false}, {L"a", L"N", L"", true},
        {L"a", L"N", L"1x", false},      {L"a", L"B", L"yes", true},
        {L"a", L"B", L"on", false},      {L"a", L"S", L"any", true},
        {L"a", L"NONE", L"1", false},
    };
    for (const Case& one : cases) {
        EXPECT_EQ(table.IsCellValueValid(one.row, one.column, one.value), one.isValid)
            << CString(one.column) << L" " << CString(one.value);
    }
    EXPECT_EQ(table.CheckRangeColumnData(L"L", nullptr), 1);
    EXPECT_EQ(table.CheckRangeColumnData(L"L", L"[10;20;0.5;]"), -1);
    EXPECT_EQ(table.CheckRangeColumnData(L"L", L"no range"), 0);
    EXPECT_EQ(table.CheckRangeColumnData(L"NONE", nullptr), 0);
}

TEST(TableChecks, RepairDeletesTheCellsThatDoNotFit)
{
    CStandaloneEvaluatorProvider provider;
    const auto family = FamilyBuilder()
                            .Column({L"B", L"boolean", L"", L"true"})
                            .Row(L"a", {{L"B", L"on"}})
                            .Row(L"b", {{L"B", L"no"}})
                            .Open(&provider);
    family->GetEncapFamilyTable()->ValidateAndRepairColumnData(&ColumnOf(*family, L"B"));
    EXPECT_EQ(CellText(*family, L"a", L"B"), L"true");
    EXPECT_EQ(CellText(*family, L"b", L"B"), L"no");
    CEncapFamilyColumn stranger;
    family->GetEncapFamilyTable()->ValidateAndRepairColumnData(&stranger);
    family->GetEncapFamilyTable()->ValidateAndRepairColumnData(nullptr);
}

TEST(TableChecks, FileNamesOfCustomPartsUseEveryCustomColumn)
{
    struct Case {
        const char* what;
        const wchar_t* fileName;
        const wchar_t* override;
        bool isUnique;
        std::vector<CString> titles;
    };
    const Case cases[] = {
        {"both, one through another column", L"p{VIA}-{C2}", L"", true, {}},
        {"one is missing", L"p{VIA}", L"", false, {L"C2"}},
        {"no formula", L"", L"", false, {L"C1", L"C2"}},
        {"overridden", L"p{VIA}-{C2}", L"same", false, {L"C1", L"C2"}},
        {"broken formula uses none", L"{NO}", L"", false, {L"C1", L"C2"}},
    };
    for (const Case& one : cases) {
        CStandaloneEvaluatorProvider provider;
        FamilyBuilder builder;
        builder.Supplies(L"FILE", kFileNameCategory)
            .Column({L"C1", L"double", L"mm", L"[1;9;;]", L"Custom='true'"})
            .Column({L"C2", L"double", L"mm", L"[1;9;;]", L"Custom='true'"})
            .Column({L"VIA", L"string", L"", L"{C1}"})
            .Column({L"FILE", L"string", L"", one.fileName});
        const auto family =
            builder
                .Row(L"a", *one.override != L'\0'
                               ? std::vector<std::pair<CString, CString>>{{L"FILE", one.override}}
                               : std::vector<std::pair<CString, CString>>{})
                .Open(&provider);
        std::vector<CString> titles{L"left over"};
        EXPECT_EQ(family->GetEncapFamilyTable()->FileNameOfCustomPartIsUnique(titles), one.isUnique)
            << one.what;
        EXPECT_EQ(titles, one.titles) << one.what;
    }
}
