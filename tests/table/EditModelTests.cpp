#include "encap/platform/Encoding.h"
#include "tests/support/FamilyBuilder.h"
#include "tests/support/SumProvider.h"
#include "tests/table/EditSequence.h"

#include <cstdlib>

using namespace encap::test;

namespace {

uint32_t Setting(const char* name, uint32_t otherwise)
{
    const char* text = std::getenv(name);
    return text != nullptr ? static_cast<uint32_t>(std::strtoul(text, nullptr, 10)) : otherwise;
}

} // namespace

// ENCAP_MODEL_SEED numbers the first sequence, ENCAP_MODEL_RUNS says how many there are.
TEST(EditModel, RandomEditsLeaveWhatTheModelSays)
{
    constexpr uint32_t kRuns = kSanitized ? 40 : 200;
    constexpr int kSteps = 25;
    const uint32_t first = Setting("ENCAP_MODEL_SEED", 1);
    const uint32_t runs = Setting("ENCAP_MODEL_RUNS", kRuns);
    for (uint32_t seed = first; seed != first + runs; ++seed) {
        EditSequence sequence(seed);
        for (int step = 0; step < kSteps; ++step) {
            ASSERT_EQ(sequence.Step(), L"")
                << "ENCAP_MODEL_SEED=" << seed << " step " << step << "\n"
                << encap::platform::WideToUtf8(sequence.Log());
            ASSERT_FALSE(HasFailure()) << "ENCAP_MODEL_SEED=" << seed << "\n"
                                       << encap::platform::WideToUtf8(sequence.Log());
        }
    }
}

TEST(EditModel, ValuesFollowWhatDecidesThem)
{
    SumProvider host;
    const auto family = FamilyBuilder()
                            .Column({L"T", L"string"})
                            .Column({L"U", L"string", L"", L"{T}"})
                            .Row(L"r", {{L"T", L"raw"}})
                            .Row(L"s", {{L"T", L"{U"}})
                            .Open(&host, {L"<S xml:lang='en'/>", L"<S xml:lang='de'/>"});
    CEncapFamilyTable& table = *family->GetEncapFamilyTable();
    table.SetValue(L"r", L"T", L"english", true);
    table.SetValue(L"r", L"T", L"de", L"deutsch", true);
    const auto expectBoth = [&](const CString& text) {
        EXPECT_EQ(CellText(*family, L"r", L"T"), text);
        EXPECT_EQ(CellText(*family, L"r", L"U"), text);
    };
    expectBoth(L"english");
    ColumnOf(*family, L"T").SetIsHidden(true);
    EXPECT_FALSE(ColumnOf(*family, L"T").IsLocalized());
    expectBoth(L"deutsch");
    table.DuplicateColumn(0, L"T", L"V");
    EXPECT_EQ(CellText(*family, L"s", L"V"), CellText(*family, L"s", L"T"))
        << "a text that fails fails in a copy too";
}

TEST(EditModel, UnknownIdsAddNothingToAnEmptyTable)
{
    CEncapFamily family(L"<F><FamilyTable/></F>", {}, L"", nullptr, false);
    CEncapFamilyTable& table = *family.GetEncapFamilyTable();
    const Saved before = Save(family);
    int index = 0;
    table.ChangeRowIndex(L"nobody", index);
    table.ChangeColumnIndex(L"nothing", index);
    table.DuplicateColumn(0, L"nothing", L"Y");
    table.CopyRow(L"nobody");
    table.SetValue(L"nobody", L"nothing", L"1", true);
    table.BumpAllMemberRevisions(nullptr);
    EXPECT_EQ(table.CreateSourceMemberRevisionColumn(), nullptr);
    EXPECT_TRUE(Save(family) == before);
}
