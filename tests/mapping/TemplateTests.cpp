#include "encap/mapping/FamilyColVexilData.h"
#include "encap/mapping/FamilyTemplate.h"
#include "encap/xml/XMLParser.h"
#include "tests/mapping/CanonicalXml.h"

#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace {

using Data = CEncapFamilyColVexilData;

/// A template over a document of its own.
struct OpenTemplate {
    explicit OpenTemplate(const CString& parameters)
        : document(L"<FamilyTemplate Name='T' FileName='t.ipt'>" + parameters +
                   L"</FamilyTemplate>"),
          root(document.GetRootNode()), familyTemplate(root, nullptr)
    {
    }

    CEncapFamilyTemplate* operator->() { return &familyTemplate; }
    /// The element with this Id, wherever it is.
    [[nodiscard]] XMLNode Element(const CString& id) const
    {
        XMLNode node;
        root.GetChildNode((L"//GeneralizedParameter[@Id='" + id + L"']").c_str(), node);
        return node;
    }
    [[nodiscard]] CString Xml() const { return encap::test::CanonicalXml(root); }

    XMLParser document;
    XMLNode root;
    CEncapFamilyTemplate familyTemplate;
};

CString Parameter(const CString& id, const CString& children = {})
{
    return L"<GeneralizedParameter Id='" + id + L"'>" + children + L"</GeneralizedParameter>";
}

CString Object(const CString& id, const CString& key, const CString& subObjectId,
               const CString& type = L"kPropertyObject")
{
    return L"<GeneralizedParameter Id='" + id + L"' ObjectReferenceKey='" + key +
           L"' SubObjectId='" + subObjectId + L"' ObjectType='" + type + L"'/>";
}

int IdOf(const CEncapFamilyTemplateParameter* parameter)
{
    return parameter != nullptr ? parameter->GetId() : -1;
}

TEST(PropertyData, TypesHaveTexts)
{
    const wchar_t* const texts[] = {L"Unknown",
                                    L"kUserParameterObject",
                                    L"kPropertyObject",
                                    L"kPartComponentDefinitionObject",
                                    L"kPartDocumentObject",
                                    L"kModelParameterObject",
                                    L"kPartFeatureObject",
                                    L"kRenderStyleObject"};
    int32_t number = 0;
    for (const wchar_t* text : texts) {
        const auto type = static_cast<Data::ColPropertyObjectType>(number++);
        EXPECT_EQ(Data::ColPropObjTypeToString(type), text);
        EXPECT_EQ(Data::StringToColPropObjType(text), type);
    }
    EXPECT_EQ(Data::ColPropObjTypeToString(static_cast<Data::ColPropertyObjectType>(8)),
              L"Unknown");
    EXPECT_EQ(Data::StringToColPropObjType(L"KPROPERTYOBJECT"), Data::kPropertyObject);
    EXPECT_EQ(Data::StringToColPropObjType(L""), Data::kUnknownObject);

    Data data(nullptr, L"Material", Data::kPartComponentDefinitionObject);
    data.SetPropObjTypeStr(nullptr);
    EXPECT_EQ(data.PropObjTypeStr(), L"Unknown");
    EXPECT_EQ(data.ObjectRefKey() + data.SubObjectId(), L"Material");
}

TEST(Template, NumbersNewParametersBehindAllLevels)
{
    OpenTemplate empty(L"");
    EXPECT_EQ(IdOf(empty->AddParameter(L"k", L"s")), 0);
    OpenTemplate nested(Parameter(L"3", Parameter(L"7")) + L"<GeneralizedParameter/>");
    EXPECT_EQ(IdOf(nested->AddParameter(L"k", L"s")), 8);
    EXPECT_EQ(nested.Xml(), L"<FamilyTemplate FileName=\"t.ipt\" Name=\"T\">\n"
                            L"  <GeneralizedParameter Id=\"3\">\n"
                            L"    <GeneralizedParameter Id=\"7\"/>\n"
                            L"  </GeneralizedParameter>\n"
                            L"  <GeneralizedParameter/>\n"
                            L"  <GeneralizedParameter Id=\"8\" ObjectReferenceKey=\"k\" "
                            L"SubObjectId=\"s\"/>\n"
                            L"</FamilyTemplate>\n");
    OpenTemplate full(Parameter(L"-5") +
                      Parameter(std::to_wstring(std::numeric_limits<int32_t>::max())));
    EXPECT_EQ(full->AddParameter(L"k", L"s"), nullptr);
    EXPECT_EQ(CEncapFamilyTemplate().AddParameter(L"k", L"s"), nullptr);
}

TEST(Template, FindsTheObjectOfLowestIdInAnyCase)
{
    OpenTemplate parameters(Object(L"6", L"Key", L"Sub") + Object(L"4", L"KEY", L"sUB") +
                            Object(L"2", L"key", L"") + Parameter(L"1", Object(L"0", L"n", L"")));
    EXPECT_EQ(IdOf(parameters->AddParameter(L"kEY", L"SUB")), 4);
    EXPECT_TRUE(parameters->DeleteParameter(4));
    EXPECT_EQ(IdOf(parameters->AddParameter(L"kEY", L"SUB")), 6);
    EXPECT_EQ(IdOf(parameters->AddParameter(L"KEY", L"")), 2);
    EXPECT_EQ(IdOf(parameters->AddParameter(L"n", L"")), 7); // nested ones are not looked at
    EXPECT_EQ(IdOf(parameters->AddParameter(L"n", L"")), 7);
    EXPECT_EQ(IdOf(parameters->AddParameter(L"\u00c4", L"")), 8);
    EXPECT_EQ(IdOf(parameters->AddParameter(L"\u00e4", L"")), 8);
}

TEST(Template, HasOneMaterialWhateverItsKey)
{
    const CString material = L"KPartComponentDefinitionObject";
    OpenTemplate parameters(Object(L"5", L"a", L"MATERIAL", material) +
                            Object(L"6", L"b", L"material", material) +
                            Object(L"3", L"c", L"Material", L"kPropertyObject"));
    EXPECT_EQ(IdOf(parameters->AddParameter(L"z", L"Material")), 5);
    EXPECT_EQ(IdOf(parameters->AddParameter(L"c", L"Material")), 3);
    EXPECT_EQ(IdOf(parameters->AddParameter(L"b", L"Material")), 5);
    parameters->GetParameter(5)->SetObjectType(L"kPropertyObject");
    EXPECT_EQ(IdOf(parameters->AddParameter(L"z", L"Material")), 6);
    EXPECT_EQ(IdOf(parameters->AddParameter(L"z", L"Visible")), 7);
}

TEST(Template, SeesEditsOfTheAttributes)
{
    OpenTemplate parameters(Object(L"1", L"a", L"") + Object(L"2", L"b", L""));
    EXPECT_EQ(IdOf(parameters->AddParameter(L"b", L"")), 2);
    parameters->GetParameter(1)->SetObjectReferenceKey(L"b");
    EXPECT_EQ(IdOf(parameters->AddParameter(L"B", L"")), 1);
    parameters.Element(L"1").SetProperty(L"SubObjectId", L"s"); // past the objects
    EXPECT_EQ(IdOf(parameters->AddParameter(L"b", L"")), 2);
    EXPECT_EQ(IdOf(parameters->AddParameter(L"b", L"S")), 1);
    parameters->GetParameter(2)->SetSubObjectId(nullptr);
    EXPECT_EQ(IdOf(parameters->AddParameter(L"b", L"")), 2);
}

TEST(Template, FindsIdsFromTheTopDownAndDeletesWithTheSubtree)
{
    // 5 stands in the branch of 2 (deep), in the branch of 9 (shallow) and once more below.
    OpenTemplate parameters(Parameter(L"9", Parameter(L"5", Parameter(L"8"))) +
                            Parameter(L"2", Parameter(L"3", Parameter(L"5", Parameter(L"6")))) +
                            Parameter(L"7", Parameter(L"7")) + Parameter(L"7", Parameter(L"70")));
    ASSERT_NE(parameters->GetParameter(5), nullptr);
    EXPECT_NE(parameters->GetParameter(5)->GetChild(6), nullptr);
    EXPECT_EQ(parameters->GetParameter(5)->GetChild(8), nullptr);
    EXPECT_EQ(parameters->GetParameter(70), nullptr); // below the second element of one id
    EXPECT_EQ(parameters->GetParameters().size(), 3U);

    EXPECT_TRUE(parameters->DeleteParameter(5));
    EXPECT_EQ(parameters->GetParameter(6), nullptr);
    EXPECT_NE(parameters->GetParameter(5)->GetChild(8), nullptr);
    EXPECT_TRUE(parameters->DeleteParameter(7)); // the top-level one, its child goes too
    EXPECT_FALSE(parameters->DeleteParameter(7));
    EXPECT_TRUE(parameters->GetParameter(9)->DeleteChild(8));
    EXPECT_FALSE(parameters->GetParameter(9)->DeleteChild(8));
    EXPECT_TRUE(parameters->DeleteParameter(5));
    EXPECT_FALSE(parameters->DeleteParameter(5));
    EXPECT_EQ(parameters.Xml(), L"<FamilyTemplate FileName=\"t.ipt\" Name=\"T\">\n"
                                L"  <GeneralizedParameter Id=\"9\"/>\n"
                                L"  <GeneralizedParameter Id=\"2\">\n"
                                L"    <GeneralizedParameter Id=\"3\"/>\n"
                                L"  </GeneralizedParameter>\n"
                                L"  <GeneralizedParameter Id=\"7\">\n"
                                L"    <GeneralizedParameter Id=\"70\"/>\n"
                                L"  </GeneralizedParameter>\n"
                                L"</FamilyTemplate>\n");
}

TEST(Template, NestsAsDeepAsTheDocument)
{
    constexpr int kLevels = 200;
    CString xml;
    for (int level = kLevels; level > 0; --level) {
        xml = Parameter(std::to_wstring(level), xml);
    }
    OpenTemplate parameters(xml);
    EXPECT_EQ(IdOf(parameters->GetParameter(kLevels)), kLevels);
    EXPECT_EQ(IdOf(parameters->GetParameter(1)->GetChild(kLevels)), kLevels);
    EXPECT_TRUE(parameters->DeleteParameter(100));
    EXPECT_EQ(parameters->GetParameter(101), nullptr);
    EXPECT_EQ(IdOf(parameters->GetParameter(99)), 99);

    // Elements that are added one below the other may go deeper than any text.
    XMLNode element = parameters.root;
    for (int level = 0; level < 20'000; ++level) {
        element = element.AddNode(L"GeneralizedParameter", nullptr, L"Id",
                                  std::to_wstring(level).c_str());
    }
    const CEncapFamilyTemplate deep(parameters.root, nullptr);
    EXPECT_EQ(IdOf(deep.GetParameter(19'999)), 19'999);
}

} // namespace
