#include "encap/foundation/TextFormat.h"

#include <gtest/gtest.h>

namespace encap {
namespace {

TEST(TextFormat, ArgumentsFillTheirPlacesInOrder)
{
    const CString name = L"r\u00F6w";
    EXPECT_EQ(FormatText(L"Cell[@id=\"%s\"]/%s[%d]", {name, L"Value", -7}),
              L"Cell[@id=\"r\u00F6w\"]/Value[-7]");
    EXPECT_EQ(FormatText(L"%X %X", {255, -1}), L"FF FFFFFFFF");
    EXPECT_EQ(FormatText(L"100%% of %d", {INT32_MIN}), L"100% of -2147483648");
}

TEST(TextFormat, AnArgumentIsNeverReadAsAFormat)
{
    EXPECT_EQ(FormatText(L"<%s|%s>", {L"%s%d%%", L"b"}), L"<%s%d%%|b>");
}

TEST(TextFormat, MissingArgumentsAndStrayPercentSignsAreHarmless)
{
    const wchar_t* const none = nullptr;
    EXPECT_EQ(FormatText(L"[%s][%d]", {none}), L"[][]");
    EXPECT_EQ(FormatText(L"5% %q %", {1}), L"5% %q %");
    EXPECT_EQ(FormatText(L"%s", {1, 2}), L"1");
}

TEST(TextFormat, TrimTakesOnlyTheSixBlanksOfAscii)
{
    EXPECT_EQ(TrimView(L" \t\n\v\f\ra b\u00A0 \r\n"), L"a b\u00A0");
    EXPECT_EQ(TrimView(L" \t "), L"");
    EXPECT_EQ(TrimView(L""), L"");
}

} // namespace
} // namespace encap
