#include "encap/foundation/RangeParser.h"

#include <gtest/gtest.h>

namespace {

struct RangeCase {
    const wchar_t* text;
    bool isRange;
    bool valid;
    CStringArray parts; ///< minimum, maximum, step, default
    const wchar_t* value;
};

TEST(RangeParser, ReadsThePartsAndJudgesTheForm)
{
    const RangeCase cases[] = {
        {L"[1;10;0.5;2]", true, true, {L"1", L"10", L"0.5", L"2"}, L"2"},
        {L"[ 1 ;\t10;;]", true, true, {L"1", L"10", L"", L""}, L"1"},
        {L"[;;;]", true, true, {L"", L"", L"", L""}, L""},
        {L"[1;2;3;4;5]", true, true, {L"1", L"2", L"3", L"4;5"}, L"4;5"},
        {L"[a;10;1;5]", true, false, {L"a", L"10", L"1", L"5"}, L""},
        {L"[1;b;1;c]", true, false, {L"1", L"b", L"1", L"c"}, L""},
        {L"[1;2;x;y]", true, true, {L"1", L"2", L"x", L"y"}, L"y"},
        {L"[{A};{B}*2;;{C}]", true, false, {L"{A}", L"{B}*2", L"", L"{C}"}, L""},
        // More text around the brackets: no range, but it can be read.
        {L" [1;2;3;4]", false, true, {L"1", L"2", L"3", L"4"}, L"4"},
        {L"[1;2;3;4]mm", false, true, {L"1", L"2", L"3", L"4"}, L"4"},
        {L"[1;2;3;[4]", true, true, {L"1", L"2", L"3", L"[4"}, L"[4"},
        {L"[1;2;3;4]]", false, true, {L"1", L"2", L"3", L"4"}, L"4"},
        // Marks that are missing or out of order.
        {L"", false, false, {L"", L"", L"", L""}, L""},
        {L"5", false, false, {L"", L"", L"", L""}, L""},
        {L"[", false, false, {L"", L"", L"", L""}, L""},
        {L"[1;2;3]", false, false, {L"", L"", L"", L""}, L""},
        {L"[1;2;3;4", false, false, {L"", L"", L"", L""}, L""},
        {L"[1;2;3];4]", false, false, {L"", L"", L"", L""}, L""},
        {L"[1;2];3;4]", false, false, {L"", L"", L"", L""}, L""},
        {L";;;[]", false, false, {L"", L"", L"", L""}, L""},
        {L"][1;2;3;4]", false, true, {L"1", L"2", L"3", L"4"}, L"4"},
    };
    for (const RangeCase& expected : cases) {
        SCOPED_TRACE(testing::PrintToString(CString(expected.text)));
        EXPECT_EQ(CRangeParser::IsRange(expected.text), expected.isRange);
        const CRangeParser parser(expected.text);
        EXPECT_EQ(
            (CStringArray{parser.getMin(), parser.getMax(), parser.getStep(), parser.getDefault()}),
            expected.parts);
        EXPECT_EQ(parser.hasMin(), !expected.parts[0].empty());
        EXPECT_EQ(parser.hasMax(), !expected.parts[1].empty());
        EXPECT_EQ(parser.hasStep(), !expected.parts[2].empty());
        EXPECT_EQ(parser.hasDefault(), !expected.parts[3].empty());
        CString value = L"before";
        EXPECT_EQ(parser.GetStrValue(value, L'.'), expected.valid);
        EXPECT_EQ(value, expected.value);
    }
}

TEST(RangeParser, TheValueTakesTheAskedSeparator)
{
    const CRangeParser comma(L"[1,5;10;;]");
    const CRangeParser point(L"[0;10;;2.5]");
    CString value;
    EXPECT_TRUE(comma.GetStrValue(value, L'.'));
    EXPECT_EQ(value, L"1.5");
    EXPECT_TRUE(point.GetStrValue(value, L','));
    EXPECT_EQ(value, L"2,5");
    EXPECT_TRUE(comma.GetStrValue(value, L'\''));
    EXPECT_EQ(value, L"1,5");
}

TEST(RangeParser, ANullTextIsNoRange)
{
    CString value;
    EXPECT_FALSE(CRangeParser(nullptr).GetStrValue(value, L'.'));
}

} // namespace
