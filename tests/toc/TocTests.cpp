#include "encap/toc/Toc.h"

#include "encap/foundation/NumberText.h"
#include "encap/platform/Encoding.h"
#include "encap/toc/TocCategory.h"
#include "encap/toc/TocFamily.h"
#include "tests/support/ProcessorTime.h"

#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::Pair;
using testing::UnorderedElementsAre;

constexpr const wchar_t* kLibrary = LR"(<TableOfContents>
  <Families>
    <Family InternalName="bolt" DisplayName="Hex bolt" Description="d" Standard="ISO 4014"
            StandardsOrg="ISO" Manufacturer="m" FolderName="f" RevisionId="r" Library="lib"
            SourceMoniker="src" SrcActive="true" LastModifiedTime="t" FromSource="other"
            SourceRevisionId="sr"/>
    <Entry InternalName="Nut" DisplayName="first"/>
    <Family DisplayName="nameless"/>
    <!-- not an entry -->
    <Entry InternalName="Nut" DisplayName="second"/>
    <Family InternalName="" DisplayName="empty name"/>
  </Families>
  <Categories>
    <Category InternalName="top" DisplayName="Fasteners" RevisionId="1" Library="lib" Domain="dom">
      <FamilyReference InternalName="Nut"/>
      <Category InternalName="mid" Hidden="True" SpecialAuthoring="1">
        <FamilyReference InternalName="bolt"/>
        <FamilyReference/>
        <FamilyReference InternalName="gone"/>
        <FamilyReference InternalName="bolt"/>
        <Category InternalName="deep"><FamilyReference InternalName="Nut"/></Category>
      </Category>
    </Category>
    <Category DisplayName="nameless"/>
    <Other><Category InternalName="aside" Hidden="no"/></Other>
  </Categories>
</TableOfContents>)";

CToc Open(const CString& xml)
{
    CToc toc;
    toc.SetToc(XMLParser(xml));
    return toc;
}

CString NameOf(const XMLNode& node)
{
    CString name;
    return node.GetProperty(L"InternalName", name) ? name : L"(none)";
}

std::vector<CString> NamesOf(const XMLNodeArray& nodes)
{
    std::vector<CString> names;
    for (const XMLNode& node : nodes) {
        names.push_back(NameOf(node));
    }
    return names;
}

using NextStep = bool (CToc::*)(XMLNode&);

std::vector<CString> Rest(CToc& toc, NextStep next)
{
    std::vector<CString> names;
    for (XMLNode node; (toc.*next)(node);) {
        names.push_back(NameOf(node));
    }
    return names;
}

CTocCategory CategoryOf(const CToc& toc, const wchar_t* name)
{
    XMLNode node;
    EXPECT_TRUE(toc.GetCategoryInfo(name, node));
    return CTocCategory(node);
}

TEST(Toc, FindsByExactNameAndKeepsTheLastOfEqualNames)
{
    const CToc toc = Open(kLibrary);
    XMLNode node;
    ASSERT_TRUE(toc.GetFamilyInfo(L"Nut", node));
    CString title;
    EXPECT_TRUE(CTocFamily(node).GetDisplayName(title));
    EXPECT_EQ(title, L"second");
    EXPECT_TRUE(toc.GetFamilyInfo(L"", node));
    EXPECT_TRUE(toc.GetFamilyInfo(nullptr, node));
    EXPECT_FALSE(toc.GetFamilyInfo(L"nut", node));
    EXPECT_FALSE(toc.GetFamilyInfo(L"top", node));
    EXPECT_TRUE(toc.GetCategoryInfo(L"deep", node));
    EXPECT_TRUE(toc.GetCategoryInfo(L"aside", node));
    EXPECT_FALSE(toc.GetCategoryInfo(L"bolt", node));
    EXPECT_EQ(NameOf(node), L"aside"); // a failed look-up leaves the node
    EXPECT_EQ(toc.GetCategoryCount(), 4);
}

TEST(Toc, IteratesInTheOrderOfNamesFromEachReset)
{
    CToc toc = Open(kLibrary);
    XMLNode node;
    EXPECT_FALSE(toc.NextNode(node));
    EXPECT_FALSE(toc.NextCategory(node));
    for (int round = 0; round < 2; ++round) {
        toc.ResetIter();
        toc.ResetCatIter();
        EXPECT_THAT(Rest(toc, &CToc::NextNode), ElementsAre(L"", L"Nut", L"bolt"));
        EXPECT_FALSE(toc.NextNode(node));
        EXPECT_THAT(Rest(toc, &CToc::NextCategory), ElementsAre(L"aside", L"deep", L"mid", L"top"));
    }
}

TEST(Toc, IterationsSurviveCopiesAndNewDocuments)
{
    CToc toc = Open(kLibrary);
    toc.ResetCatIter();
    XMLNode node;
    ASSERT_TRUE(toc.NextCategory(node));
    {
        CToc copy(toc);
        EXPECT_TRUE(copy.GetDocument() == toc.GetDocument());
        EXPECT_THAT(Rest(copy, &CToc::NextCategory), ElementsAre(L"deep", L"mid", L"top"));
    }
    toc.SetToc(XMLParser(LR"(<TableOfContents><Categories><Category InternalName="x"/>
        <Category InternalName="aa"/></Categories></TableOfContents>)"));
    EXPECT_THAT(Rest(toc, &CToc::NextCategory), ElementsAre(L"x"));
    toc = CToc();
    toc.ResetCatIter();
    EXPECT_FALSE(toc.NextCategory(node));
    EXPECT_EQ(toc.GetCategoryCount(), 0);
}

TEST(Toc, WalksTheTreeOfCategories)
{
    const CToc toc = Open(kLibrary);
    XMLNodeArray nodes;
    EXPECT_TRUE(toc.GetCategoryPath(L"deep", nodes));
    EXPECT_THAT(NamesOf(nodes), ElementsAre(L"deep", L"mid", L"top"));
    EXPECT_TRUE(toc.GetCategoryPath(L"aside", nodes));
    EXPECT_THAT(NamesOf(nodes), ElementsAre(L"aside"));
    EXPECT_FALSE(toc.GetCategoryPath(L"unknown", nodes));
    EXPECT_TRUE(nodes.empty());
    EXPECT_TRUE(toc.GetFirstLevelCategories(nodes));
    EXPECT_THAT(NamesOf(nodes), ElementsAre(L"top", L"(none)"));
}

TEST(Toc, AFamilyBelongsToTheLastCategoryThatReferencesIt)
{
    const CToc toc = Open(kLibrary);
    std::map<CString, CString> categories;
    EXPECT_TRUE(toc.GetFam2CatMap(categories, false));
    EXPECT_THAT(categories,
                ElementsAre(Pair(L"Nut", L"top"), Pair(L"bolt", L"mid"), Pair(L"gone", L"mid")));
    categories.clear();
    EXPECT_TRUE(toc.GetFam2CatMap(categories, true));
    EXPECT_THAT(categories, ElementsAre(Pair(L"Nut", L"top")));
}

TEST(Toc, MissingPartsLeaveTheOthersUsable)
{
    struct Case {
        const wchar_t* xml;
        bool hasFamily;
        int categories;
    };
    const Case cases[] = {
        {L"", false, 0},
        {L"<Library><Families><F InternalName='f'/></Families></Library>", false, 0},
        {L"<TableOfContents/>", false, 0},
        {L"<TableOfContents><Families/></TableOfContents>", false, 0},
        {L"<TableOfContents><Families><F InternalName='f'/></Families></TableOfContents>", true, 0},
        {L"<TableOfContents><Categories><Category InternalName='c'/></Categories>"
         L"</TableOfContents>",
         false, 1},
    };
    for (const Case& item : cases) {
        const CToc toc = Open(item.xml);
        XMLNode node;
        XMLNodeArray nodes;
        EXPECT_EQ(toc.GetFamilyInfo(L"f", node), item.hasFamily);
        EXPECT_EQ(toc.GetCategoryCount(), item.categories);
        EXPECT_EQ(toc.GetFirstLevelCategories(nodes), item.categories > 0);
    }
}

TEST(TocCategory, ReadsItsAttributesAndNeighbours)
{
    const CToc toc = Open(kLibrary);
    const CTocCategory top = CategoryOf(toc, L"top");
    const CTocCategory mid = CategoryOf(toc, L"mid");
    CString text;
    EXPECT_TRUE(top.GetDisplayName(text) && text == L"Fasteners");
    EXPECT_TRUE(top.GetRevisionID(text) && text == L"1");
    EXPECT_TRUE(top.GetLibraryID(text) && text == L"lib");
    EXPECT_TRUE(top.GetDomain(text) && text == L"dom");
    EXPECT_FALSE(mid.GetDomain(text));
    EXPECT_FALSE(top.IsHidden() || top.SpecialAuthoring());
    EXPECT_TRUE(mid.IsHidden() && mid.SpecialAuthoring());
    EXPECT_FALSE(CategoryOf(toc, L"aside").IsHidden());

    CTocCategory parent;
    EXPECT_TRUE(mid.GetParent(parent));
    EXPECT_EQ(NameOf(parent), L"top");
    EXPECT_FALSE(top.GetParent(parent));
    EXPECT_FALSE(parent.IsCategoryNode());
    XMLNodeArray children;
    EXPECT_TRUE(mid.GetSubCategoryNodes(children));
    EXPECT_THAT(NamesOf(children), ElementsAre(L"deep"));

    CStringArray list;
    std::set<CString> names{L"left over"};
    EXPECT_TRUE(mid.GetReferencedFamilies(list));
    EXPECT_THAT(list, ElementsAre(L"bolt", L"gone", L"bolt"));
    EXPECT_TRUE(mid.GetReferencedFamilies(names));
    EXPECT_THAT(names, UnorderedElementsAre(L"bolt", L"gone"));
    EXPECT_FALSE(CTocCategory().GetReferencedFamilies(list));
    EXPECT_TRUE(list.empty());
}

TEST(TocFamily, ReadsPropertiesByNumber)
{
    const CToc toc = Open(kLibrary);
    XMLNode node;
    ASSERT_TRUE(toc.GetFamilyInfo(L"bolt", node));
    const CTocFamily family(node);
    // By number, 0 to 17; no text where a table of contents has no such attribute.
    const wchar_t* const expected[] = {L"Hex bolt", L"d",    L"ISO 4014", L"ISO",  L"m",   nullptr,
                                       nullptr,     L"f",    L"r",        L"bolt", L"lib", nullptr,
                                       L"src",      nullptr, nullptr,     L"true", L"t",   nullptr};
    int32_t number = 0;
    for (const wchar_t* text : expected) {
        CString value = L"left over";
        const bool found = family.GetFamilyProperty(static_cast<FamilyPropType>(number), value);
        EXPECT_EQ(found, text != nullptr) << number;
        EXPECT_EQ(value, text != nullptr ? text : L"") << number;
        ++number;
    }
    CString value;
    EXPECT_TRUE(family.GetSourceLib(value) && value == L"other");
    EXPECT_TRUE(family.GetSourceFamily(value) && value == L"src");
    EXPECT_TRUE(family.GetSourceRevision(value) && value == L"sr");
    EXPECT_TRUE(family.GetStandardOrg(value) && value == L"ISO");
    EXPECT_TRUE(family.GetRevision(value) && value == L"r");
    EXPECT_FALSE(CTocFamily().GetInternalName(value));
}

/// A library in ten categories, each family referenced twice. Every tenth family is listed twice,
/// and as many references lead to families that are not listed.
CString LargeLibrary(int families)
{
    CString xml = L"<TableOfContents><Families>";
    for (int i = 0; i < families; ++i) {
        const CString name = L"f" + std::to_wstring((i * 7919LL) % families);
        xml.append(L"<F InternalName=\"").append(name).append(L"\" DisplayName=\"first\"/>");
    }
    for (int i = 0; i < families; i += 10) {
        const CString name = L"f" + std::to_wstring(i);
        xml.append(L"<F InternalName=\"").append(name).append(L"\" DisplayName=\"last\"/>");
    }
    xml += L"</Families><Categories>";
    for (int category = 0; category < 10; ++category) {
        xml.append(L"<Category InternalName=\"c").append(std::to_wstring(category)).append(L"\">");
        for (int i = category; i < families + families / 10; i += 5) {
            const CString name = L"f" + std::to_wstring(i);
            xml.append(L"<FamilyReference InternalName=\"").append(name).append(L"\"/>");
        }
        xml += L"</Category>";
    }
    return xml + L"</Categories></TableOfContents>";
}

/// What each step takes a family, in microseconds.
struct BrowseTimes {
    double load = 0;
    double iterate = 0;
    double find = 0;
};

BrowseTimes Browse(int families)
{
    BrowseTimes times;
    const CString xml = LargeLibrary(families);
    const auto micros = [families](const encap::test::ProcessorTime& time) {
        return time.Seconds() * 1e6 / families;
    };
    encap::test::ProcessorTime time;
    CToc toc = Open(xml);
    times.load = micros(time);

    time = {};
    toc.ResetIter();
    const std::vector<CString> names = Rest(toc, &CToc::NextNode);
    times.iterate = micros(time);
    EXPECT_EQ(names.size(), static_cast<std::size_t>(families));
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));

    time = {};
    XMLNode node;
    CString title;
    int last = 0;
    for (int i = 0; i < families; ++i) {
        EXPECT_TRUE(toc.GetFamilyInfo((L"f" + std::to_wstring(i)).c_str(), node));
        last += CTocFamily(node).GetDisplayName(title) && title == L"last" ? 1 : 0;
        EXPECT_FALSE(toc.GetFamilyInfo((L"f" + std::to_wstring(i + families)).c_str(), node));
    }
    times.find = micros(time);
    EXPECT_EQ(last, families / 10);
    std::map<CString, CString> categories;
    toc.GetFam2CatMap(categories, false);
    EXPECT_EQ(categories.size(), static_cast<std::size_t>(families + families / 10));
    return times;
}

std::string Ratio(double small, double large)
{
    return encap::platform::WideToUtf8(encap::FormatGeneral(small, 3) + L" and " +
                                       encap::FormatGeneral(large, 3));
}

// Sixteen times the families: what one costs may grow as log n does, by about a third, and by what
// no longer fits the processor's caches.
TEST(Toc, AHundredThousandFamiliesLoadIterateAndAreFoundByName)
{
    const BrowseTimes small = Browse(6'250);
    const BrowseTimes large = Browse(100'000);
    std::cout << "microseconds a family, of 6,250 and of 100,000: load "
              << Ratio(small.load, large.load) << "; iterate "
              << Ratio(small.iterate, large.iterate)
              << "; find one that is there and one that is not " << Ratio(small.find, large.find)
              << '\n';
    constexpr double kMostGrowth = 8.0; // of sixteen, which looking through all would take
    EXPECT_LT(large.load, kMostGrowth * small.load);
    EXPECT_LT(large.iterate, kMostGrowth * small.iterate);
    EXPECT_LT(large.find, kMostGrowth * small.find);
}

} // namespace
