#include "tests/xml/XmlTestSupport.h"

namespace {

struct PropertyCase {
    const wchar_t* text;
    bool isInteger;
    int integer;
    double number;
    bool truth;
    bool isTrueWord;
};

constexpr PropertyCase kCases[] = {
    {L"12", true, 12, 12.0, true, false},
    {L" -7 ", true, -7, -7.0, true, false},
    {L"+5", true, 5, 5.0, true, false},
    {L"0", true, 0, 0.0, false, false},
    {L"-1", true, -1, -1.0, true, false},
    {L"1.5", false, 0, 1.5, true, false},
    {L"0.0", false, 0, 0.0, false, false},
    {L"2147483647", true, 2147483647, 2147483647.0, true, false},
    {L"2147483648", false, 0, 2147483648.0, true, false},
    {L"3,5 mm", false, 0, 3.0, false, false},
    {L"1e3", false, 0, 1000.0, true, false},
    {L"", false, 0, 0.0, false, false},
    {L"no", false, 0, 0.0, false, false},
    {L"true", false, 0, 0.0, true, true},
    {L"TRUE", false, 0, 0.0, true, true},
    {L"True", false, 0, 0.0, true, true},
    {L"false", false, 0, 0.0, false, false},
    {L"1 x", false, 0, 1.0, false, false},
};

} // namespace

TEST(Properties, GettersConvertTheStoredText)
{
    XMLParser parser(L"<a/>");
    XMLNode node = parser.GetRootNode();
    for (const PropertyCase& item : kCases) {
        ASSERT_TRUE(node.SetProperty(L"v", item.text));
        int integer = 99;
        long wide = 99;
        double number = 99.0;
        bool truth = !item.truth;
        bool isTrueWord = !item.isTrueWord;
        EXPECT_EQ(node.GetProperty(L"v", integer), item.isInteger) << item.text;
        EXPECT_EQ(node.GetProperty(L"v", wide), item.isInteger) << item.text;
        EXPECT_TRUE(node.GetProperty(L"v", number) && node.GetProperty(L"v", truth));
        EXPECT_TRUE(node.GetStrBoolProperty(L"v", isTrueWord));
        EXPECT_EQ(integer, item.integer) << item.text;
        EXPECT_EQ(wide, item.integer) << item.text;
        EXPECT_EQ(number, item.number) << item.text;
        EXPECT_EQ(truth, item.truth) << item.text;
        EXPECT_EQ(isTrueWord, item.isTrueWord) << item.text;
    }
    short small = 7;
    EXPECT_TRUE(node.SetProperty(L"v", 32768) && !node.GetProperty(L"v", small));
    EXPECT_EQ(small, 0);
    EXPECT_TRUE(node.SetProperty(L"v", -32768) && node.GetProperty(L"v", small));
    EXPECT_EQ(small, -32768);
}

TEST(Properties, SettersWriteTheirText)
{
    XMLParser parser(L"<a/>");
    XMLNode node = parser.GetRootNode();
    wchar_t writable[] = L"w";
    const auto stored = [&] { return PropertyOf(node, L"v"); };
    EXPECT_TRUE(node.SetProperty(L"v", 0.1));
    EXPECT_EQ(stored(), L"0.100000000000");
    EXPECT_TRUE(node.SetProperty(L"v", 2.5));
    EXPECT_EQ(stored(), L"2.500000000000");
    EXPECT_TRUE(node.SetProperty(L"v", true));
    EXPECT_EQ(stored(), L"-1");
    EXPECT_TRUE(node.SetProperty(L"v", false));
    EXPECT_EQ(stored(), L"0");
    EXPECT_TRUE(node.SetProperty(L"v", -2147483647L));
    EXPECT_EQ(stored(), L"-2147483647");
    EXPECT_TRUE(node.SetStrBoolProperty(L"v", true));
    EXPECT_EQ(stored(), L"true");
    EXPECT_TRUE(node.SetProperty(L"v", writable));
    EXPECT_EQ(stored(), L"w");
    EXPECT_FALSE(node.SetProperty(L"v", static_cast<const wchar_t*>(nullptr)));
    EXPECT_FALSE(node.SetProperty(L"v", VARIANT()));
    EXPECT_FALSE(node.SetProperty(nullptr, L"x"));
    EXPECT_EQ(stored(), L"w");
    EXPECT_TRUE(node.SetProperty(L"v", VARIANT(2.5)));
    EXPECT_EQ(stored(), L"2.5");
    EXPECT_TRUE(node.SetProperty(L"v", VARIANT(true)));
    EXPECT_EQ(stored(), L"-1");
    EXPECT_TRUE(node.SetProperty(L"v", VARIANT(-3)));
    EXPECT_EQ(stored(), L"-3");
    EXPECT_TRUE(node.SetProperty(L"v", CString()));
    EXPECT_EQ(XmlOf(node), "<a v=\"\"/>");
}

TEST(Properties, MissingOnesAndOtherNodesResetTheOutput)
{
    XMLParser parser(L"<a x='1'>text</a>");
    XMLNode text;
    ASSERT_TRUE(parser.GetRootNode().GetFirstChildNode(text));
    for (XMLNode node : {parser.GetRootNode(), text, XMLNode()}) {
        CString string = L"old";
        CComBSTR bstr(L"old");
        VARIANT variant(1);
        int integer = 1;
        double number = 1.0;
        bool truth = true;
        EXPECT_FALSE(node.GetProperty(L"missing", string));
        EXPECT_FALSE(node.GetProperty(L"missing", bstr));
        EXPECT_FALSE(node.GetProperty(L"missing", &variant));
        EXPECT_FALSE(node.GetProperty(L"missing", integer));
        EXPECT_FALSE(node.GetProperty(L"missing", number));
        EXPECT_FALSE(node.GetProperty(L"missing", truth));
        EXPECT_TRUE(string.empty() && bstr.Length() == 0 && integer == 0 && number == 0.0);
        EXPECT_TRUE(!truth && variant == VARIANT());
        EXPECT_FALSE(node.GetProperty(nullptr, string));
        EXPECT_FALSE(node.GetProperty(L"x", static_cast<VARIANT*>(nullptr)));
    }
    CStringArray names;
    EXPECT_FALSE(text.SetProperty(L"v", 1));
    EXPECT_FALSE(text.RemoveProperty(L"v"));
    EXPECT_FALSE(text.GetProperties(names));
    VARIANT found;
    EXPECT_TRUE(parser.GetRootNode().GetProperty(L"x", &found));
    EXPECT_EQ(found, VARIANT(CString(L"1")));
}

TEST(Properties, PrefixedNamesAreOneName)
{
    XMLParser parser(L"<a lang='x' xml:lang='en' b='1'/>");
    XMLNode root = parser.GetRootNode();
    CStringArray names = {L"kept"};
    EXPECT_EQ(PropertyOf(root, L"xml:lang"), L"en");
    EXPECT_EQ(PropertyOf(root, L"lang"), L"x");
    EXPECT_TRUE(root.SetProperty(L"xml:lang", L"de"));
    EXPECT_TRUE(root.GetProperties(names));
    EXPECT_EQ(names, (CStringArray{L"kept", L"lang", L"xml:lang", L"b"}));
    EXPECT_TRUE(root.RemoveProperty(L"lang"));
    EXPECT_TRUE(root.RemoveProperty(L"missing"));
    EXPECT_FALSE(root.RemoveProperty(nullptr));
    EXPECT_EQ(XmlOf(root), "<a xml:lang=\"de\" b=\"1\"/>");
    XMLNode added = root.AddNode(L"c", nullptr, L"xml:lang", L"fr");
    EXPECT_EQ(XmlOf(added), "<c xml:lang=\"fr\"/>");
}
