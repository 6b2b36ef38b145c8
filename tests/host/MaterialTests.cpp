#include "tests/host/HostCases.h"

namespace {

using Provider = CStandaloneEvaluatorProvider;

CString NameOf(Provider& provider, const wchar_t* key)
{
    CString name = L"before";
    provider.GetMaterialName(key, name);
    return name;
}

CString KeyOf(Provider& provider, const wchar_t* name)
{
    CString key = L"before";
    provider.GetMaterialRefKey(name, key);
    return key;
}

TEST(Materials, AreFoundByKeyAndByName)
{
    Provider provider;
    ASSERT_TRUE(provider.LoadMaterials(L"\uFEFFKey,NAME\r\n"
                                       L"S235,Structural steel\r\n"
                                       L"\"A,2\",\"Stainless \"\"A2\"\"\nsteel\"\n"
                                       L"M1,Old\rM1,New\n"
                                       L"M2,New"));
    EXPECT_EQ(NameOf(provider, L"S235"), L"Structural steel");
    EXPECT_EQ(NameOf(provider, L"s235"), L"");
    EXPECT_EQ(NameOf(provider, L"A,2"), L"Stainless \"A2\"\nsteel");
    EXPECT_EQ(NameOf(provider, L"M1"), L"New");
    EXPECT_EQ(NameOf(provider, L"Key"), L"");
    EXPECT_EQ(NameOf(provider, nullptr), L"");
    EXPECT_EQ(KeyOf(provider, L"Stainless \"A2\"\nsteel"), L"A,2");
    EXPECT_EQ(KeyOf(provider, L"New"), L"M2");
    EXPECT_EQ(KeyOf(provider, L"Old"), L"") << "a name that no key has any more";
    CString text;
    EXPECT_EQ(provider.GetMaterialName(L"X", text), Provider::StatusUnknownName);
    EXPECT_EQ(provider.LastError(), L"no material has the key \"X\"");
}

TEST(Materials, HeadingIsOnlyTheFirstLine)
{
    Provider provider;
    ASSERT_TRUE(provider.LoadMaterials(L"key,title\nkey,name\n"));
    EXPECT_EQ(NameOf(provider, L"key"), L"name");
    ASSERT_TRUE(provider.LoadMaterials(L""));
    EXPECT_EQ(NameOf(provider, L"key"), L"");
}

TEST(Materials, ABadTextLeavesTheTable)
{
    const struct {
        const wchar_t* text;
        const wchar_t* reason;
    } cases[] = {
        {L"a,b\nc\n", L"line 2 of the materials does not have two cells"},
        {L"a,b,c", L"line 1 of the materials does not have two cells"},
        {L"a,b\n\nc,d", L"line 2 of the materials does not have two cells"},
        {L"a,\"b", L"the quotes of line 1 of the materials do not match"},
        {L"a,\"b\"c", L"the quotes of line 1 of the materials do not match"},
        {L"a,b\"c", L"the quotes of line 1 of the materials do not match"},
    };
    Provider provider;
    ASSERT_TRUE(provider.LoadMaterials(L"k,n"));
    for (const auto& each : cases) {
        EXPECT_FALSE(provider.LoadMaterials(each.text));
        EXPECT_EQ(provider.LastError(), each.reason);
        EXPECT_EQ(NameOf(provider, L"k"), L"n");
        EXPECT_EQ(NameOf(provider, L"a"), L"");
    }
}

} // namespace
