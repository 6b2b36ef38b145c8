#include "encap/xml/Queries.h"

#include "encap/xml/PathQuery.h"
#include "encap/xml/QueryLiteral.h"
#include "tests/xml/XmlTestSupport.h"

#include <random>

namespace {

constexpr int kDocuments = 60;
constexpr int kQueries = 60;

/// Documents and queries over few names and values, so that much is found: names in a namespace,
/// comments and texts in between, values with quotes.
class Generator {
public:
    explicit Generator(unsigned seed) : m_random(seed) {}

    CString Document()
    {
        m_budget = 80;
        return L"<A xmlns:n='urn:n'>" + Content(0) + L"</A>";
    }

    CString Query()
    {
        static constexpr const wchar_t* kStarts[] = {L"", L"", L"", L"./", L"//", L"/", L" "};
        CString query = kStarts[Below(7)];
        bool mayDescend = query.find(L"//") == CString::npos;
        const int steps = 1 + Below(3);
        for (int i = 0; i < steps; ++i) {
            const bool descends = i > 0 && mayDescend && Below(3) == 0;
            mayDescend = mayDescend && !descends;
            query += i == 0 ? L"" : descends ? L"//" : L"/";
            query += Name() + (Below(3) == 0 ? Predicate() : CString());
        }
        return query;
    }

private:
    int Below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }
    CString Name() { return CString(1, static_cast<wchar_t>(L'A' + Below(3))); }
    CString Blanks() { return CString(static_cast<std::size_t>(Below(3)), L' '); }

    CString Value()
    {
        static constexpr const wchar_t* kValues[] = {L"", L"1", L"2", L"it's", L"\"", L"a'\"b"};
        return kValues[Below(6)];
    }

    CString Content(int level)
    {
        CString content;
        for (int children = level == 0 ? 6 : Below(5); children > 0 && m_budget > 0; --children) {
            content += Below(4) == 0 ? L"<!--c-->text" : L"";
            content += Element(level);
        }
        return content;
    }

    CString Element(int level)
    {
        --m_budget;
        const CString name = (Below(8) == 0 ? L"n:" : L"") + Name();
        CString element = L"<" + name;
        for (const wchar_t* attribute : {L"x", L"y", L"n:x"}) {
            XMLNode holder = m_holder.GetRootNode();
            if (Below(2) == 0) {
                holder.SetProperty(L"v", Value());
                const CString xml = encap::platform::Utf8ToWide(XmlOf(holder));
                element += L" " + CString(attribute) + xml.substr(4, xml.size() - 6);
            }
        }
        return element + L">" + (level < 5 ? Content(level + 1) : CString()) + L"</" + name + L">";
    }

    CString Predicate()
    {
        CString predicate = L"[" + Blanks() + Condition();
        for (int more = Below(2); more > 0; --more) {
            predicate += L" and " + Condition();
        }
        return predicate + L"]" + Blanks();
    }

    CString Condition()
    {
        const CString value = Value();
        return (Below(3) == 0 ? Name() + L"/@" : CString(L"@")) + (Below(2) == 0 ? L"x" : L"y") +
               Blanks() + L"=" + Blanks() +
               encap::QueryLiteral(value, Below(2) == 0 ? L'"' : L'\'') + Blanks();
    }

    std::mt19937 m_random;
    XMLParser m_holder{L"<a/>"};
    int m_budget = 0;
};

std::vector<xmlNode*> Walked(xmlNode* context, const CString& query)
{
    const std::string text = encap::platform::WideToUtf8(query);
    encap::PathQuery path;
    std::vector<xmlNode*> nodes;
    EXPECT_TRUE(path.Parse(text)) << text;
    path.Select(context, nodes);
    encap::PathQuery again;
    EXPECT_TRUE(again.Parse(text));
    EXPECT_EQ(again.First(context), nodes.empty() ? nullptr : nodes.front()) << text;
    return nodes;
}

} // namespace

TEST(Queries, TheDirectWalkGivesWhatXPathGives)
{
    Generator generator(20240607);
    std::size_t found = 0;
    for (int i = 0; i < kDocuments; ++i) {
        const XMLParser parser(generator.Document());
        XMLNodeArray contexts;
        ASSERT_TRUE(parser.GetNodesByTag(L"*", contexts));
        contexts.push_back(parser.GetRootNode().GetParentNode());
        contexts.push_back(parser.GetRootNode().CloneNode(true));
        for (int j = 0; j < kQueries; ++j) {
            const CString query = generator.Query();
            const XMLNode& context = contexts[static_cast<std::size_t>(j) % contexts.size()];
            xmlNode* node = encap::NodeOf(context);
            const std::vector<xmlNode*> walked = Walked(node, query);
            EXPECT_EQ(walked, encap::SelectAllByXPath(node, query.c_str()))
                << encap::platform::WideToUtf8(query) << " in " << XmlOf(context);
            found += walked.size();
        }
    }
    EXPECT_GT(found, 2000U); // else the comparison says little
}

TEST(Queries, OtherShapesAreLeftToXPath)
{
    const char* const others[] = {
        "",
        "*",
        ".",
        "..",
        "A[1]",
        "A[@x]",
        "@x",
        "n:A",
        "A[@n:x='1']",
        "text()",
        "A|B",
        "A[@x='1' or @y='2']",
        "A[@x=1]",
        "A//B//C",
        "//A//B",
        "A[not(B)]",
        "A/",
        "A B",
        "A[@x='1'",
        "A[@x='1]",
        "child::A",
        "A[@x!='1']",
        "A/@x",
        "A[B='1']",
        "A[@x=concat('1')]",
        "A[@x='1' and]",
        "A[@x='1' andB/@x='1']",
        "A/B/C/A/B/C/A/B/C",
    };
    for (const char* text : others) {
        encap::PathQuery path;
        EXPECT_FALSE(path.Parse(text)) << text;
    }
}

TEST(Queries, XPathSelectsAnyKindOfNodeInDocumentOrder)
{
    XMLParser parser(L"<r xmlns:n='urn:n'><b i='2'/>t<a i='1'/><b i='3'><b i='4'/></b></r>");
    const XMLNode root = parser.GetRootNode();
    const auto select = [&](const wchar_t* query) {
        XMLNodeArray nodes;
        CString texts;
        const bool isFound = root.SelectChildNodes(query, nodes);
        EXPECT_EQ(isFound, !nodes.empty());
        for (const XMLNode& node : nodes) {
            CString text = PropertyOf(node, L"i");
            text.empty() ? node.GetNodeText(text) : false;
            texts += text + L".";
        }
        return texts;
    };
    EXPECT_EQ(select(L"a | b"), L"2.1.3.");
    EXPECT_EQ(select(L"//@i"), L"2.1.3.4.");
    EXPECT_EQ(select(L"text()"), L"t.");
    EXPECT_EQ(select(L"descendant::*[@i > 2]"), L"3.4.");
    EXPECT_EQ(select(L"b[last()]/b/ancestor::*"), L"t.3.");
    EXPECT_EQ(select(L"*[translate(@i,'123','abc')=\"b\"]"), L"2.");
    EXPECT_EQ(select(L"namespace::*"), L"");
}

TEST(Queries, InvalidAndValueQueriesSelectNothingWithoutAWord)
{
    XMLParser parser(L"<r><a/></r>");
    XMLNode root = parser.GetRootNode();
    CString deep(100'000, L'(');
    CString chain = L"a";
    CString literal = L"a[@x='" + CString(1'000'000, L'v') + L"'][1]";
    for (int i = 0; i < 50'000; ++i) {
        chain += i % 2 == 0 ? L"+a" : L"|a";
    }
    const CString queries[] = {
        L"",
        L"]",
        L"a[",
        L"1 + 1",
        L"'text'",
        L"count(a)",
        L"unknown()",
        L"p:a",
        L"$variable",
        L"a[@x='\x0001']",
        L"id('x')",
        L"ms:string-compare(a)",
        L"a[ms:string-compare()]",
        deep,
        deep + L"a" + CString(100'000, L')'),
        chain,
        literal,
        L"a" + CString(50'000, L'[') + L"a" + CString(50'000, L']'),
        L"-" + CString(100'000, L'-'),
    };
    testing::internal::CaptureStderr();
    for (const CString& query : queries) {
        XMLNode node(root);
        XMLNodeArray nodes;
        nodes.push_back(root);
        EXPECT_FALSE(root.SelectChildNodes(query.c_str(), nodes)) << query.size();
        EXPECT_TRUE(nodes.empty());
        EXPECT_FALSE(root.GetChildNode(query.c_str(), node));
        EXPECT_FALSE(node.IsNode());
    }
    XMLNode node;
    EXPECT_FALSE(root.GetChildNode(nullptr, node));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    const CString nested = CString(64, L'(') + L"a" + CString(64, L')');
    EXPECT_TRUE(root.GetChildNode(nested.c_str(), node));
    EXPECT_TRUE(root.GetChildNode(L"a[contains('((\"', '(')]", node));
}

TEST(Queries, WorkWithoutEndIsCutOff)
{
    CString text = L"<r>";
    for (int i = 0; i < 2000; ++i) {
        text += L"<a/>";
    }
    const XMLParser parser(text + L"</r>");
    XMLNodeArray nodes;
    const wchar_t* const endless =
        L"//*[count(//*[count(//*[count(//*[count(//*) > 1]) > 1]) > 1]) > 1]";
    EXPECT_FALSE(parser.GetRootNode().SelectChildNodes(endless, nodes));
    EXPECT_TRUE(parser.GetRootNode().SelectChildNodes(L"*[position() > 1999]", nodes));
}

TEST(Queries, StringCompareIgnoresCaseOnRequest)
{
    XMLParser parser(L"<r><a k='\x00C4"
                     L"b'><c k='x'/><c k='y'/></a></r>");
    const auto selects = [&](const wchar_t* condition) {
        return ChildOf(parser, (L"a[" + CString(condition) + L"]").c_str()).IsNode();
    };
    EXPECT_TRUE(selects(L"ms:string-compare(@k, '\x00E4"
                        L"B', '', 'i') = 0"));
    EXPECT_FALSE(selects(L"ms:string-compare(@k, '\x00E4"
                         L"B', '', '') = 0"));
    EXPECT_FALSE(selects(L"ms:string-compare(@k, '\x00E4"
                         L"B') = 0"));
    EXPECT_TRUE(selects(L"ms:string-compare(c/@k, 'X', '' , 'i' ) = 0 "));
    EXPECT_FALSE(selects(L"ms:string-compare(c/@k, 'Y', '', 'i') = 0"));
    EXPECT_TRUE(selects(L"ms:string-compare(missing, '', '', 'i') = 0"));
    EXPECT_TRUE(selects(L"ms:string-compare('a', 'B', '', 'i') = -1"));
    EXPECT_TRUE(selects(L"ms:string-compare('b', 'A', '', 'i') = 1"));
}

TEST(Queries, LiteralsHoldAnyValue)
{
    const struct {
        const wchar_t* value;
        wchar_t quote;
        const wchar_t* literal;
    } cases[] = {
        {L"", L'"', L"\"\""},
        {L"D", L'"', L"\"D\""},
        {L"D", L'\'', L"'D'"},
        {L"3\" pipe", L'"', L"'3\" pipe'"},
        {L"it's", L'\'', L"\"it's\""},
        {L"a\"b'c", L'"', L"concat(\"a\",'\"',\"b'c\")"},
        {L"'\"\"", L'\'', L"concat(\"'\",'\"\"')"},
        {L"] | //x[\"'", L'"', L"concat(\"] | //x[\",'\"',\"'\")"},
    };
    for (const auto& item : cases) {
        EXPECT_EQ(encap::QueryLiteral(item.value, item.quote), item.literal);
        XMLParser parser(L"<r><a/><a/></r>");
        XMLNode second = ChildOf(parser, L"a[2]");
        second.SetProperty(L"v", item.value);
        const CString query = L"a[@v=" + encap::QueryLiteral(item.value, item.quote) + L"]";
        EXPECT_TRUE(ChildOf(parser, query.c_str()).IsSameNode(second));
        EXPECT_TRUE(ChildOf(parser, (query + L"[1]").c_str()).IsSameNode(second));
    }
}
