#include "encap/mapping/MemberColToParam.h"
#include "encap/mapping/MemberColToTemplate.h"
#include "encap/xml/XMLParser.h"
#include "tests/mapping/CanonicalXml.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;

TEST(ColumnTemplateMap, HoldsEachParameterOnce)
{
    const XMLParser document(L"<ColumnToTemplate TableColumn='D'/>");
    CEncapMemberColToTemplate map(document.GetRootNode(), nullptr);
    CString column;
    map.GetColumnName(column);
    EXPECT_EQ(column, L"D");
    for (int round = 0; round < 2; ++round) {
        map.AddMapping(L"T", 7);
        map.AddMapping(L"it's \"T\"", -1);
        map.AddMapping(nullptr, 0);
    }
    map.DeleteMapping(nullptr, 0);
    map.DeleteMapping(L"t", 7);
    EXPECT_EQ(encap::test::CanonicalXml(document.GetRootNode()),
              L"<ColumnToTemplate TableColumn=\"D\">\n"
              L"  <TemplatesParameter>\n"
              L"    <TemplateParameter ParameterId=\"7\" TemplateName=\"T\"/>\n"
              L"    <TemplateParameter ParameterId=\"-1\" TemplateName=\"it's &quot;T&quot;\"/>\n"
              L"  </TemplatesParameter>\n"
              L"</ColumnToTemplate>\n");
    map.DeleteAllMapping();
    EXPECT_EQ(encap::test::CanonicalXml(document.GetRootNode()),
              L"<ColumnToTemplate TableColumn=\"D\">\n"
              L"  <TemplatesParameter/>\n"
              L"</ColumnToTemplate>\n");
}

TEST(ColumnTemplateMap, ComparesIdsByTheirText)
{
    const XMLParser document(
        L"<C><ColumnToTemplate><TemplatesParameter><TemplateParameter TemplateName='T' "
        L"ParameterId='07'/></TemplatesParameter></ColumnToTemplate></C>");
    XMLNode element;
    ASSERT_TRUE(document.GetRootNode().GetChildNode(L"ColumnToTemplate", element));
    CEncapMemberColToTemplate map(element, nullptr);
    ASSERT_EQ(map.GetMappings().size(), 1U);
    EXPECT_EQ(map.GetMappings()[0].parameterId, 7);
    map.AddMapping(L"T", 7);
    EXPECT_EQ(map.GetMappings().size(), 2U);
    map.DeleteMapping(L"T", 7);
    map.DeleteMapping(L"T", 7);
    EXPECT_EQ(map.GetMappings().size(), 1U);
    map.RemoveNodeFromXML();
    EXPECT_EQ(document.GetRootNode().GetChildCount(), 0);
    map.RemoveNodeFromXML();
    CEncapMemberColToTemplate().AddMapping(L"T", 1);
}

/// A map over the "ParamToColumn" elements of a document: the first, then those that it takes.
struct OpenCategoryMap {
    explicit OpenCategoryMap(const CString& body) : document(L"<Map>" + body + L"</Map>")
    {
        document.GetRootNode().GetChildNodes(L"ParamToColumn", elements);
        map = std::make_unique<CEncapMemberColToParam>(elements[0], nullptr);
        for (std::size_t i = 1; i < elements.size(); ++i) {
            taken += map->AddCategoryParam(elements[i]) ? L'1' : L'0';
        }
    }
    [[nodiscard]] std::vector<CString> Parameters() const
    {
        std::vector<CString> ids{L"left over"};
        EXPECT_EQ(map->GetCategoryParams(ids), !ids.empty());
        return ids;
    }

    XMLParser document;
    XMLNodeArray elements;
    std::unique_ptr<CEncapMemberColToParam> map;
    CString taken;
};

CString Supplies(const CString& id)
{
    return L"<ParamToColumn TableColumn='D'><CategoryParameterRef CategoryParameter='" + id +
           L"'/></ParamToColumn>";
}

TEST(ColumnCategoryMap, TakesEachParameterOnceAndRemovesInAnyCase)
{
    OpenCategoryMap open(L"<ParamToColumn TableColumn='D'/>" + Supplies(L"abc") + Supplies(L"ABC") +
                         Supplies(L"abc") +
                         L"<ParamToColumn><CategoryParameterRef/></ParamToColumn>"
                         L"<ParamToColumn/>" +
                         Supplies(L""));
    EXPECT_EQ(open.taken, L"110001");
    EXPECT_EQ(open.map->ParamCount(), 4);
    EXPECT_THAT(open.Parameters(), ElementsAre(L"abc", L"ABC", L""));
    EXPECT_TRUE(open.map->IsMappedForCatParam(L"ABC"));
    EXPECT_FALSE(open.map->IsMappedForCatParam(L"Abc"));
    EXPECT_TRUE(open.map->IsMappedForCatParam(nullptr));
    CString column;
    open.map->GetColumnName(column);
    EXPECT_EQ(column, L"D");

    EXPECT_TRUE(open.map->RemoveCategoryParam(L"unknown"));
    EXPECT_EQ(open.map->ParamCount(), 4);
    EXPECT_TRUE(open.map->RemoveCategoryParam(L"aBc"));
    EXPECT_THAT(open.Parameters(), ElementsAre(L""));
    EXPECT_FALSE(open.map->IsMappedForCatParam(L"abc"));
    EXPECT_EQ(open.document.GetNodesCount(), 5); // the elements that it did not take stay
    open.map->RemoveNodesFromXML();
    EXPECT_EQ(open.map->ParamCount(), 0);
    EXPECT_EQ(open.document.GetNodesCount(), 3);
    open.map->GetColumnName(column);
    EXPECT_EQ(column, L"D");
}

TEST(ColumnCategoryMap, SeesEditsOfTheElements)
{
    OpenCategoryMap open(Supplies(L"a") + Supplies(L"b"));
    EXPECT_TRUE(open.map->IsMappedForCatParam(L"b"));
    XMLNode reference;
    ASSERT_TRUE(open.elements[1].GetChildNode(L"CategoryParameterRef", reference));
    reference.SetProperty(L"CategoryParameter", L"c");
    EXPECT_FALSE(open.map->IsMappedForCatParam(L"b"));
    EXPECT_TRUE(open.map->IsMappedForCatParam(L"c"));
}

} // namespace
