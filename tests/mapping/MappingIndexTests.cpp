#include "encap/family/Queries.h"
#include "encap/foundation/TextFormat.h"
#include "encap/mapping/FamilyMapping.h"
#include "encap/mapping/MapEdit.h"
#include "encap/platform/Encoding.h"
#include "encap/table/FamilyColumn.h"
#include "encap/xml/QueryLiteral.h"
#include "tests/family/TestFamily.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

// The index gives at any time what the queries over the document give, whoever edited it.

namespace {

using namespace encap;
using encap::platform::WideToUtf8;
using encap::test::Attribute;
using encap::test::CountOf;
using encap::test::TestFamily;

const std::vector<CString> kColumns{L"A", L"B", L"C", L"D", L"a\"b"};
const std::vector<CString> kTemplates{L"T1", L"t1", L"it's \"T\""};
const std::vector<CString> kKeys{L"", L"Key", L"kEY", L"A", L"\u00c4\"'", L"b"};
const std::vector<CString> kSubObjects{L"", L"Material", L"VISIBLE"};
const std::vector<CString> kParameters{L"", L"p", L"P", L"q'\"", L"\u00e4", L"\u00c4"};
constexpr int kLastId = 12;

class MappingQueries : public testing::TestWithParam<unsigned> {
protected:
    MappingQueries() : m_random(GetParam()), m_family(MakeFamily()) {}

    int Number(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(m_random); }
    const CString& Any(const std::vector<CString>& texts)
    {
        return texts[static_cast<std::size_t>(Number(static_cast<int>(texts.size())))];
    }

    static CString MakeFamily()
    {
        CString xml = L"<Family><FamilyTable><Columns>";
        for (const CString& column : kColumns) {
            xml += L"<Column ColumnId='" + column + L"' ValueType='double'/>";
        }
        return xml + L"</Columns><Rows/></FamilyTable><FamilyTemplates><FamilyTemplate Name='T1'/>"
                     L"<FamilyTemplate/></FamilyTemplates><ParameterMap/></Family>";
    }

    XMLNode At(const wchar_t* path)
    {
        XMLNode node;
        m_family.Root().GetChildNode(path, node);
        return node;
    }
    /// One of the elements that the path selects, or none.
    XMLNode AnyOf(const wchar_t* path)
    {
        XMLNodeArray nodes;
        m_family.Root().SelectChildNodes(path, nodes);
        return nodes.empty()
                   ? XMLNode()
                   : nodes[static_cast<std::size_t>(Number(static_cast<int>(nodes.size())))];
    }

    // Edits through the mapping.
    void EditByMapping()
    {
        CEncapFamilyMapping& mapping = *m_family->GetEncapFamilyMapping();
        CEncapFamilyColumn* column = m_family.Table().GetFamilyColumnByID(Any(kColumns).c_str());
        switch (Number(5)) {
        case 0:
            column->SetIsGeometryColumn(Number(2) == 0);
            column->SetIsZelPropertyColumn(Number(2) == 0);
            [[fallthrough]];
        case 1:
            mapping.UpdateColumnMapping(
                column, Any(kKeys).c_str(), Any(kSubObjects).c_str(),
                static_cast<CEncapFamilyColVexilData::ColPropertyObjectType>(Number(8)));
            break;
        case 2: mapping.AddParamToColumnMapping(column, L"c", Any(kParameters).c_str()); break;
        case 3: m_family->RemoveAllColumnMapping(column); break;
        default:
            if (CEncapFamilyTemplate* any = mapping.AddFamilyTemplate(Any(kTemplates))) {
                EditTemplate(*any);
            }
        }
    }
    void EditTemplate(CEncapFamilyTemplate& familyTemplate)
    {
        if (CEncapFamilyTemplateParameter* parameter =
                familyTemplate.AddParameter(Any(kKeys), Any(kSubObjects))) {
            parameter->SetObjectReferenceKey(Any(kKeys).c_str());
            parameter->SetObjectType(L"kPropertyObject");
        }
        if (Number(3) == 0) {
            familyTemplate.DeleteParameter(Number(kLastId));
        }
    }

    // Edits past the mapping.
    void EditDocument()
    {
        XMLNode map = At(L"ParameterMap");
        switch (Number(8)) {
        case 0: AnyOf(L"//TemplateParameter").SetProperty(L"ParameterId", Number(kLastId)); break;
        case 1: AnyOf(L"//TemplateParameter").RemoveThisNode(true); break;
        case 2:
            AnyOf(L"//GeneralizedParameter").SetProperty(L"SubObjectId", Any(kSubObjects));
            break;
        case 3:
            AnyOf(L"//CategoryParameterRef").SetProperty(L"CategoryParameter", Any(kParameters));
            break;
        case 4:
            AnyOf(L"//FamilyTemplate | //GeneralizedParameter")
                .AddNode(L"GeneralizedParameter", nullptr, L"Id",
                         std::to_wstring(Number(kLastId)).c_str(), L"ObjectReferenceKey",
                         Any(kKeys).c_str());
            break;
        case 5: AddConstant(map); break;
        case 6:
            AnyOf(
                L"//ColumnToTemplate | //ParamToColumn | //FamilyTemplates | //ParamTemplateValue")
                .AddNode(L"TemplatesParameter")
                .AddNode(L"TemplateParameter", nullptr, L"TemplateName", L"T1", L"ParameterId",
                         L"3");
            break;
        default:
            map.AddNode(L"MemberParametersMap")
                .AddNode(L"ParamsToColumn")
                .AddNode(L"ParamToColumn", nullptr, L"TableColumn", Any(kColumns).c_str())
                .AddNode(Number(2) == 0 ? L"CategoryParameterRef" : L"Other", nullptr,
                         L"CategoryParameter", Any(kParameters).c_str());
        }
    }
    void AddConstant(XMLNode& map)
    {
        XMLNode value = map.GetOrAddNode(L"FamilyParametersMap")
                            .GetOrAddNode(L"ParamsToTemplate")
                            .AddNode(L"ParamTemplateValue");
        value.AddNode(L"CategoryParameterRef", nullptr, L"CategoryParameter",
                      Any(kParameters).c_str());
        value.AddNode(L"CategoryParameterRef", nullptr, L"CategoryParameter",
                      Any(kParameters).c_str());
    }

    // Comparisons.
    void CompareUses(MappingIndex& index)
    {
        const XMLNode root = m_family.Root();
        for (const CString& name : kTemplates) {
            for (int id = 0; id < kLastId; ++id) {
                const CString use = FormatText(L"TemplatesParameter/TemplateParameter"
                                               L"[@TemplateName=%s and @ParameterId=\"%d\" ]",
                                               {QueryLiteral(name), id});
                EXPECT_EQ(index.CountUses(name, id), CountOf(root, (L"//" + use).c_str()));
                EXPECT_EQ(index.IsDrivenByColumn(name, id),
                          CountOf(root, (L"//ColumnToTemplate/" + use).c_str()) > 0);
            }
        }
    }
    void CompareParameters(MappingIndex& index)
    {
        const CString upper = L"'ABCDEFGHIJKLMNOPQRSTUVWXYZ'";
        const CString lower = L"'abcdefghijklmnopqrstuvwxyz'";
        for (const CString& key : kKeys) {
            for (const CString& subObject : kSubObjects) {
                const CString query =
                    FormatText(L"FamilyTemplate/GeneralizedParameter"
                               L"[translate(@ObjectReferenceKey,%s,%s)=translate(%s,%s,%s) and "
                               L"translate(@SubObjectId,%s,%s)=translate(%s,%s,%s)]",
                               {upper, lower, QueryLiteral(key), upper, lower, upper, lower,
                                QueryLiteral(subObject), upper, lower});
                ExpectSame(index.FirstParameter(key, subObject), At(L"FamilyTemplates"), query);
            }
        }
    }
    void CompareReferences(MappingIndex& index)
    {
        const XMLNode map = At(L"ParameterMap");
        for (const CString& id : kParameters) {
            CString query = FormatText(query::kColumnMapping, {QueryLiteral(id)});
            if (CountOf(map, query.c_str()) == 0) {
                query = FormatText(query::kColumnMappingNoCase, {QueryLiteral(id, L'\'')});
            }
            ExpectSame(index.ColumnOfParameter(id), map, query);
        }
        for (const CString& column : kColumns) {
            ExpectSame(index.ParameterOfColumn(column), map,
                       FormatText(query::kColumnCategories, {QueryLiteral(column)}));
        }
    }
    void CompareConstants(MappingIndex& index)
    {
        const XMLNode map = At(L"ParameterMap");
        const auto queryOf = [](const wchar_t* format, const CString& literal) {
            return FormatText(format,
                              {L"FamilyParametersMap", L"ParamsToTemplate", L"ParamTemplateValue",
                               L"CategoryParameterRef", L"CategoryParameter", literal});
        };
        for (const CString& id : kParameters) {
            XMLNodeArray expected;
            if (!map.SelectChildNodes(
                    queryOf(query::kConstantMappingBelowMap, QueryLiteral(id)).c_str(), expected)) {
                map.SelectChildNodes(
                    queryOf(query::kConstantMappingBelowMapNoCase, QueryLiteral(id, L'\'')).c_str(),
                    expected);
            }
            const std::vector<XMLNode> found = index.ConstantsOfParameter(id);
            ASSERT_EQ(found.size(), expected.size()) << WideToUtf8(id);
            for (std::size_t i = 0; i < found.size(); ++i) {
                EXPECT_TRUE(found[i].IsSameNode(expected[i]));
            }
        }
    }
    static void ExpectSame(const XMLNode& found, const XMLNode& from, const CString& query)
    {
        XMLNode expected;
        from.GetChildNode(query.c_str(), expected);
        EXPECT_EQ(found.GetNode(), expected.GetNode()) << WideToUtf8(query);
    }
    void CompareAll()
    {
        MappingIndex& index = *MappingAccess::Index(m_family->GetEncapFamilyMapping());
        CompareUses(index);
        CompareParameters(index);
        CompareReferences(index);
        CompareConstants(index);
    }

    std::mt19937 m_random;
    TestFamily m_family;
};

TEST_P(MappingQueries, AreAnsweredAsTheDocumentWould)
{
    for (int step = 0; step < 60 && !HasFailure(); ++step) {
        // Mostly the mapping's own edits, some of them several in a row without an answer between.
        if (Number(4) == 0) {
            EditDocument();
        } else {
            EditByMapping();
        }
        if (Number(3) != 0) {
            CompareAll();
        }
    }
    CompareAll();
    EXPECT_GT(CountOf(m_family.Root(), L"//TemplateParameter"), 0U);
}

INSTANTIATE_TEST_SUITE_P(Random, MappingQueries, testing::Range(1U, 7U));

} // namespace
