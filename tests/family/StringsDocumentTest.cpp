#include "encap/family/StringsDocument.h"

#include "encap/family/Queries.h"
#include "encap/foundation/TextFormat.h"
#include "encap/xml/NodeAccess.h"
#include "encap/xml/QueryLiteral.h"

#include <map>
#include <random>

#include <gtest/gtest.h>

using namespace encap;

namespace {

CString CellQuery(const CString& column, const CString& row)
{
    return FormatText(query::kCellText,
                      {vocabulary::kTable.View(), vocabulary::kColumnStrings.View(),
                       vocabulary::kColumnId.View(), QueryLiteral(column), vocabulary::kRows.View(),
                       vocabulary::kCellString.View(), vocabulary::kRowId.View(),
                       QueryLiteral(row)});
}

CString TitleQuery(const CString& column)
{
    return FormatText(query::kColumnText,
                      {vocabulary::kTable.View(), vocabulary::kColumnStrings.View(),
                       vocabulary::kColumnId.View(), QueryLiteral(column),
                       vocabulary::kTitle.View()});
}

CString RowQuery(const CString& row)
{
    return FormatText(query::kRowTexts,
                      {vocabulary::kTable.View(), vocabulary::kColumnStrings.View(),
                       vocabulary::kRows.View(), vocabulary::kCellString.View(),
                       vocabulary::kRowId.View(), QueryLiteral(row)});
}

/// Random edits through the object and from outside, each followed by a comparison of every text
/// with what the format's query selects.
class StringsModel {
public:
    explicit StringsModel(unsigned seed) : m_random(seed), m_strings(m_parser)
    {
        m_parser.SetXml(L"<S><Other/><Table>text<ColumnStrings ColumnId='A'><Title>t</Title><Rows>"
                        L"<CellString RowId='r0'>0</CellString><CellString RowId='r1'/>"
                        L"<CellString>no row</CellString></Rows><Rows>"
                        L"<CellString RowId='r0'>hidden</CellString>"
                        L"<CellString RowId='r2'>a<b>b</b>c</CellString></Rows></ColumnStrings>"
                        L"<ColumnStrings/></Table><Table><ColumnStrings ColumnId='A'><Rows>"
                        L"<CellString RowId='r3'>second table</CellString></Rows></ColumnStrings>"
                        L"</Table></S>");
    }

    void Step()
    {
        const CString column = Pick(kColumns);
        const CString row = Pick(kRowIds);
        switch (m_random() % 8) {
        case 0:
        case 1:
        case 2: m_strings.SetCell(column, row, std::to_wstring(m_random())); break;
        case 3: m_strings.SetCell(column, row, L""); break;
        case 4: m_strings.RemoveCell(column, row); break;
        case 5:
            m_strings.RemoveRow(row);
            EXPECT_FALSE(Select(RowQuery(row)).IsNode());
            break;
        case 6: m_strings.SetColumnText(column, L"Title", std::to_wstring(m_random())); break;
        default: EditOutside(column, row); break;
        }
        if (m_random() % 40 == 0) {
            m_strings.RemoveColumnCells(column);
        }
    }

    void Compare()
    {
        for (const CString& column : kColumns) {
            CString title = L"unchanged";
            const bool found = m_strings.GetColumnText(column, L"Title", title);
            CompareWith(TitleQuery(column), found, title);
            for (const CString& row : kRowIds) {
                CString value = L"unchanged";
                const bool exists = m_strings.GetCell(column, row, value);
                CompareWith(CellQuery(column, row), exists, value);
            }
        }
    }

private:
    static inline const std::vector<CString> kColumns = {L"A", L"a", L"q\"'", L"\x00E4\x4E2D"};
    static inline const std::vector<CString> kRowIds = {
        L"r0", L"r1", L"r2", L"r3", L"", L"\"'", L"\x00FC", CString(100, L'x')};

    const CString& Pick(const std::vector<CString>& from) { return from[m_random() % from.size()]; }

    XMLNode Select(const CString& query) const
    {
        XMLNode node;
        m_parser.GetRootNode().GetChildNode(query.c_str(), node);
        return node;
    }

    void CompareWith(const CString& query, bool found, const CString& value) const
    {
        const XMLNode node = Select(query);
        CString expected = L"unchanged";
        node.GetNodeText(expected);
        ASSERT_EQ(found, node.IsNode());
        ASSERT_EQ(value, node.IsNode() ? expected : L"unchanged");
    }

    void EditOutside(const CString& column, const CString& row)
    {
        XMLNode node = Select(CellQuery(column, row));
        if (node.IsNode()) {
            if (m_random() % 2 == 0) {
                node.RemoveThisNode(true);
            } else {
                node.SetProperty(vocabulary::kRowId, Pick(kRowIds));
            }
        } else if (m_random() % 10 == 0) {
            m_parser.SetXml(L"<S/>");
        }
    }

    std::mt19937 m_random;
    XMLParser m_parser;
    StringsDocument m_strings;
};

TEST(StringsDocument, TheIndexGivesWhatTheQueryGives)
{
    for (unsigned seed = 1; seed <= 4; ++seed) {
        SCOPED_TRACE(seed);
        StringsModel model(seed);
        for (int step = 0; step < 100 && !::testing::Test::HasFatalFailure(); ++step) {
            model.Compare();
            model.Step();
        }
    }
}

TEST(StringsDocument, AnEmptyDocumentTakesNothing)
{
    XMLParser parser;
    StringsDocument strings(parser);
    strings.SetCell(L"A", L"r", L"v");
    strings.SetColumnText(L"A", L"Title", L"v");
    CString value;
    EXPECT_FALSE(strings.GetCell(L"A", L"r", value));
    parser.SetXml(L"<S><Table><ColumnStrings ColumnId='A'><Rows><CellString RowId='r'>late"
                  L"</CellString></Rows></ColumnStrings></Table></S>");
    EXPECT_TRUE(strings.GetCell(L"A", L"r", value));
    EXPECT_EQ(value, L"late");
}

TEST(NodeIndex, AgreesWithAMapOverManyEdits)
{
    XMLParser parser(L"<S/>");
    NodeIndex index("Id");
    std::map<CString, IXMLDOMNode*> reference;
    std::mt19937 random(7);
    for (int step = 0; step < 5000; ++step) {
        const CString id = std::to_wstring(random() % 300);
        const std::string key(id.begin(), id.end());
        if (random() % 2 == 0) {
            const XMLNode node = parser.GetRootNode().AddNode(L"N", nullptr, L"Id", id.c_str());
            EXPECT_EQ(index.Add(Raw(node)), reference.emplace(id, Raw(node)).second);
        } else {
            const auto known = reference.find(id);
            EXPECT_EQ(index.Remove(key), known != reference.end() ? known->second : nullptr);
            reference.erase(id);
        }
    }
    for (int id = 0; id < 300; ++id) {
        const auto known = reference.find(std::to_wstring(id));
        EXPECT_EQ(index.Find(std::to_string(id)),
                  known != reference.end() ? known->second : nullptr);
    }
    index.Clear();
    EXPECT_EQ(index.Find("1"), nullptr);
}

} // namespace
