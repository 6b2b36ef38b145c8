#include "tests/support/FamilyBuilder.h"
#include "tests/support/ProcessorTime.h"
#include "tests/support/SumProvider.h"

#include <algorithm>
#include <array>
#include <functional>

using namespace encap::test;

namespace {

double Timed(const std::function<void()>& work)
{
    const ProcessorTime time;
    work();
    return time.Seconds();
}

/// The middle one of three, which a busy machine disturbs least.
double Median(const std::function<double()>& measure)
{
    std::array<double, 3> times{measure(), measure(), measure()};
    std::sort(times.begin(), times.end());
    return times[1];
}

FamilyBuilder WithRows(FamilyBuilder builder, int count)
{
    for (int row = 0; row < count; ++row) {
        builder.Row(L"r" + std::to_wstring(row), {{L"A", L"1"}});
    }
    return builder;
}

constexpr int kManyRows = 10000;
constexpr double kMostPerRow = 5.0;

/// The cost of one edit in a table that starts with so many rows.
double CostOfEach(int rows, const std::function<void(CEncapFamilyTable&)>& edit)
{
    static const CString none = WithRows(FamilyBuilder().Column({L"A"}), 0).Xml();
    static const CString many = WithRows(FamilyBuilder().Column({L"A"}), kManyRows).Xml();
    FakeProvider host;
    CEncapFamily family(rows > 0 ? many.c_str() : none.c_str(), {}, L"", &host, false);
    CEncapFamilyTable& table = *family.GetEncapFamilyTable();
    return Timed([&] {
        for (int i = 0; i < kManyRows; ++i) {
            edit(table);
        }
    });
}

} // namespace

TEST(EditCost, RowsGoAndComeAtTheFrontAsAtTheEnd)
{
    const auto deleteFirst = [](CEncapFamilyTable& table) { table.DeleteRow(0); };
    const auto deleteLast = [](CEncapFamilyTable& table) {
        table.DeleteRow(static_cast<int>(table.GetRowsCount()) - 1);
    };
    const auto insertAt = [](int index) {
        return [index](CEncapFamilyTable& table) { table.InsertNewRow(index, CString()); };
    };
    const double front = Median([&] { return CostOfEach(kManyRows, deleteFirst); });
    const double end = Median([&] { return CostOfEach(kManyRows, deleteLast); });
    EXPECT_LT(front, kMostPerRow * end) << "deleting";
    const double before = Median([&] { return CostOfEach(0, insertAt(0)); });
    const double behind = Median([&] { return CostOfEach(0, insertAt(kManyRows)); });
    EXPECT_LT(before, kMostPerRow * behind) << "inserting";
}

TEST(EditCost, ManyEditsUnderLayersOfDiamondsTakeSeconds)
{
    constexpr int kLayers = 40;
    constexpr int kEdits = kSanitized ? 2000 : 10000;
    constexpr double kMostSeconds = 20.0;
    FamilyBuilder builder;
    builder.Column({L"A"});
    CString below = L"A";
    for (int layer = 1; layer <= kLayers; ++layer) {
        const CString number = std::to_wstring(layer);
        builder.Column({L"L" + number, L"double", L"", L"{" + below + L"}+0"});
        builder.Column({L"R" + number, L"double", L"", L"{" + below + L"}+0"});
        below = L"J" + number;
        builder.Column({below, L"double", L"", L"{L" + number + L"}+{R" + number + L"}"});
    }
    SumProvider host;
    const auto family = WithRows(builder, kEdits).Open(&host);
    CEncapFamilyTable& table = *family->GetEncapFamilyTable();
    const double seconds = Timed([&] {
        for (int row = 0; row < kEdits; ++row) {
            table.SetValue(row, L"A", std::to_wstring(row).c_str(), true);
        }
    });
    EXPECT_LT(seconds, kMostSeconds);
    for (int row = 0; row < kEdits; row += kEdits / 5) {
        const CString id = L"r" + std::to_wstring(row);
        for (const CString& text : {CString(std::to_wstring(row)), CString(L"3")}) {
            table.SetValue(row, L"A", text.c_str(), true);
            CString doubled = text;
            for (int layer = 0; layer < kLayers; ++layer) {
                doubled = NumberText(*Sum(doubled + L"+" + doubled));
            }
            EXPECT_EQ(CellText(*family, id, below), doubled);
        }
    }
}

TEST(EditCost, AnEditDoesNotCostMoreInALongTable)
{
    constexpr int kShort = 1000;
    constexpr int kLong = 20000;
    constexpr int kEdits = 1000;
    constexpr double kMostTimes = 5.0;
    FakeProvider host;
    FamilyBuilder columns;
    columns.Column({L"A", L"string"}).Column({L"B", L"string", L"", L"{A}"});
    columns.Column({L"C", L"string", L"", L"{B}"});
    const auto cost = [&](int rows) {
        const auto family = WithRows(columns, rows).Open(&host);
        CEncapFamilyTable& table = *family->GetEncapFamilyTable();
        CString value;
        for (int row = 0; row < rows; ++row) { // every value is at hand
            table.GetValue(table.GetRowIDByIndex(row).c_str(), L"C", value);
        }
        return Median([&] {
            return Timed([&] {
                for (int i = 0; i < kEdits; ++i) {
                    const CString id = table.GetRowIDByIndex((rows - kEdits) / 2 + i);
                    const CString text = std::to_wstring(i);
                    table.SetValue(id.c_str(), L"A", text.c_str(), true);
                    table.GetValue(id.c_str(), L"C", value);
                    ASSERT_EQ(value, text);
                }
            });
        });
    };
    const double inShort = cost(kShort);
    const double inLong = cost(kLong);
    EXPECT_LT(inLong, kMostTimes * inShort);
}
