#include "tests/support/FakeProvider.h"
#include "tests/support/FamilyBuilder.h"

#include <gtest/gtest.h>

using encap::test::CellText;
using encap::test::ColumnOf;
using encap::test::FakeProvider;
using encap::test::FamilyBuilder;

namespace {

/// A family whose host runs an edit in the middle of evaluating X, which refers to W.
class HostEdits : public ::testing::Test {
protected:
    void Open()
    {
        provider.expressions[L"3mm*2"] = {0, 6.0};
        provider.expressions[L"4mm*2"] = {0, 8.0};
        provider.expressions[L"6mm+1mm"] = {0, 7.0};
        provider.expressions[L"8mm+1mm"] = {0, 9.0};
        family = FamilyBuilder()
                     .Column({L"W", L"double", L"mm"})
                     .Column({L"X", L"double", L"mm", L"{W}*2"})
                     .Column({L"Y", L"double", L"mm", L"{X}+1mm"})
                     .Row(L"r", {{L"W", L"3"}})
                     .Row(L"s", {{L"W", L"3"}})
                     .Open(&provider);
    }
    /// Reads Y of row r while the host runs edit in its first call.
    CString ReadWith(const std::function<void(CEncapFamilyTable&)>& edit)
    {
        bool isDone = false;
        provider.onCall = [&](const FakeProvider::Call&) {
            if (!isDone) {
                isDone = true;
                edit(*family->GetEncapFamilyTable());
            }
        };
        const CString value = CellText(*family, L"r", L"Y");
        provider.onCall = nullptr;
        return value;
    }

    FakeProvider provider;
    std::unique_ptr<CEncapFamily> family;
};

} // namespace

TEST_F(HostEdits, ReadingTheSameCellIsACycleForTheInnerReadOnly)
{
    Open();
    CString inner;
    EXPECT_EQ(ReadWith([&](CEncapFamilyTable&) { inner = CellText(*family, L"r", L"Y"); }), L"7");
    EXPECT_EQ(inner, L"#1");
    EXPECT_EQ(CellText(*family, L"s", L"Y"), L"7");
}

TEST_F(HostEdits, AValueComputedAcrossAnEditIsNotKept)
{
    Open();
    EXPECT_EQ(ReadWith([](CEncapFamilyTable& table) { table.SetValue(L"r", L"W", L"4", true); }),
              L"7");
    EXPECT_EQ(CellText(*family, L"r", L"X"), L"8");
    EXPECT_EQ(CellText(*family, L"r", L"Y"), L"9");
}

TEST_F(HostEdits, DeletingWhatIsBeingEvaluatedIsSafe)
{
    Open();
    const CString columnGone = ReadWith(
        [](CEncapFamilyTable& table) { table.DeleteColumn(table.GetFamilyColumnIndexByID(L"X")); });
    EXPECT_EQ(columnGone, L"#7");
    EXPECT_EQ(CellText(*family, L"r", L"Y"), L"#3") << "its reference names nothing now";
    Open();
    EXPECT_EQ(ReadWith([](CEncapFamilyTable& table) { table.DeleteRow(0); }), L"#7");
    EXPECT_EQ(family->GetEncapFamilyTable()->GetRowsCount(), 1U);
    Open();
    EXPECT_EQ(ReadWith([](CEncapFamilyTable& table) {
                  table.GetFamilyColumnByID(L"X")->SetFormula(L"4mm*2");
              }),
              L"7");
    EXPECT_EQ(CellText(*family, L"r", L"Y"), L"9");
}

TEST_F(HostEdits, DeletingTheColumnWhoseFormulaIsBeingSet)
{
    Open();
    provider.onCall = [&](const FakeProvider::Call&) {
        CEncapFamilyTable& table = *family->GetEncapFamilyTable();
        table.DeleteColumn(table.GetFamilyColumnIndexByID(L"X"));
    };
    EXPECT_EQ(ColumnOf(*family, L"X").SetFormula(L"4mm*2"),
              CTableEvaluator::EvaluateColumnNotFound);
    EXPECT_EQ(family->GetEncapFamilyTable()->GetFamilyColumnByID(L"X"), nullptr);
}
