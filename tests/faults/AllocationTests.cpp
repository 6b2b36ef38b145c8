#include "encap/mapping/FamilyMapping.h"
#include "encap/platform/Encoding.h"
#include "encap/toc/Toc.h"
#include "tests/faults/FailingAllocation.h"
#include "tests/platform/TemporaryFolder.h"
#include "tests/support/FamilyBuilder.h"
#include "tests/support/SumProvider.h"

#include <functional>
#include <memory>
#include <new>
#include <ostream>

using namespace encap::test;

namespace {

/// The documents of a family and what it reads from them.
struct Content {
    CString family;
    std::vector<CString> strings;
    std::vector<CString> rows;
    std::vector<CString> columns;
    std::vector<CString> values;
};

std::vector<CString> ValuesOf(CEncapFamily& family, const Content& content)
{
    std::vector<CString> values;
    CEncapFamilyTable& table = *family.GetEncapFamilyTable();
    for (const CString& row : content.rows) {
        for (const CString& column : content.columns) {
            for (const wchar_t* language : {L"en", L"de"}) {
                CString value = L"-";
                const int result = table.GetValue(row.c_str(), column.c_str(), language, value);
                values.push_back(row + L"/" + column + L"/" + language + L"=" + value + L"#" +
                                 std::to_wstring(result));
            }
        }
    }
    return values;
}

Content ContentOf(CEncapFamily& family)
{
    Content content;
    family.GetFamilyXML().GetXml(content.family);
    XMLParser document;
    for (int i = 0; family.GetStringsFamilyXML(i, document); ++i) {
        document.GetXml(content.strings.emplace_back());
    }
    content.rows = family.GetEncapFamilyTable()->GetAllRowIDs();
    content.columns = family.GetEncapFamilyTable()->GetAllColumnIDs();
    content.values = ValuesOf(family, content);
    return content;
}

std::string Narrow(const std::vector<CString>& texts)
{
    std::string joined;
    for (const CString& text : texts) {
        joined += encap::platform::WideToUtf8(text) + "\n";
    }
    return joined;
}

class Fixture {
public:
    Fixture()
    {
        m_builder.Column({L"RID", L"string"})
            .Column({L"STATUS", L"string"})
            .Column({L"A", L"double", L"mm"})
            .Column({L"B", L"double", L"mm", L"{A}+{C}"})
            .Column({L"C", L"integer", L"", L"[1;9;1;2]", L"Custom=\"true\""})
            .Column({L"S", L"string", L"", L"\"size\" & {A}"})
            .Column({L"T", L"string"})
            .Column({L"MEMBER_REVISION", L"string"})
            .Row(L"r1", {{L"RID", L"r1"}, {L"A", L"1"}, {L"T", L"t"}})
            .Row(L"r2", {{L"A", L"{C}+1"}, {L"B", L"7"}, {L"STATUS", L"Suppressed"}})
            .Supplies(L"T", L"local")
            .Beside(L"<Categories><Category InternalName='c' Hidden='false'><CategoryParameter "
                    L"InternalName='local' ValueLocalized='true'/></Category></Categories>"
                    L"<FamilyTemplates><FamilyTemplate Name='M'><GeneralizedParameter Id='1' "
                    L"ObjectReferenceKey='k'/></FamilyTemplate></FamilyTemplates>"
                    L"<FamilyStrings><File FullFileName='" +
                    m_folder.File(L"FamilyStrings.en.xml") + L"'/></FamilyStrings>");
    }

    std::unique_ptr<CEncapFamily> Open()
    {
        return m_builder.Open(&m_host, {L"<S xml:lang='en'/>", L"<S xml:lang='de'/>"});
    }
    std::unique_ptr<CEncapFamily> Open(const Content& content)
    {
        return std::make_unique<CEncapFamily>(content.family.c_str(), content.strings, L"", &m_host,
                                              false);
    }
    CString Xml() const { return m_builder.Xml(); }
    const TemporaryFolder& Folder() const { return m_folder; }
    IEvaluatorProvider& Host() { return m_host; }
    void ForgetCalls() { std::vector<FakeProvider::Call>().swap(m_host.calls); }

private:
    TemporaryFolder m_folder;
    FamilyBuilder m_builder;
    SumProvider m_host;
};

struct Operation {
    const char* name;
    std::function<void(CEncapFamily&, Fixture&)> run;

    friend void PrintTo(const Operation& operation, std::ostream* stream)
    {
        *stream << operation.name;
    }
};

CEncapFamilyTable& Table(CEncapFamily& family)
{
    return *family.GetEncapFamilyTable();
}

const Operation kOperations[] = {
    {"Evaluate", [](CEncapFamily& f, Fixture&) { CellText(f, L"r1", L"B"); }},
    {"EvaluatedXml",
     [](CEncapFamily& f, Fixture&) {
         CComBSTR xml;
         Table(f).GetEvaluatedXml(xml);
     }},
    {"SetValue", [](CEncapFamily& f, Fixture&) { Table(f).SetValue(L"r1", L"A", L"{C}+5", true); }},
    {"SetLocalizedValue",
     [](CEncapFamily& f, Fixture&) { Table(f).SetValue(L"r1", L"T", L"de", L"wort", true); }},
    {"SetFormula",
     [](CEncapFamily& f, Fixture&) { ColumnOf(f, L"A").SetFormula(L"{C}+3", L"en"); }},
    {"SetLocalizedFormula",
     [](CEncapFamily& f, Fixture&) { ColumnOf(f, L"T").SetFormula(L"{S}&{A}", L"de"); }},
    {"RefusedFormula",
     [](CEncapFamily& f, Fixture&) { ColumnOf(f, L"A").SetFormula(L"{B}+1", L"en"); }},
    {"SetEmptyFormula", [](CEncapFamily& f, Fixture&) { ColumnOf(f, L"B").SetEmptyFormula(); }},
    {"SetIsCustom", [](CEncapFamily& f, Fixture&) { ColumnOf(f, L"C").SetIsCustom(false); }},
    {"SetTitle", [](CEncapFamily& f, Fixture&) { ColumnOf(f, L"A").SetTitle(L"Titel", L"de"); }},
    {"InsertRow",
     [](CEncapFamily& f, Fixture&) { Table(f).InsertNewRow(1, L"a new row of a long name"); }},
    {"InsertColumn",
     [](CEncapFamily& f, Fixture&) { Table(f).InsertNewColumn(1, L"A_NEW_COLUMN_OF_LONG_NAME"); }},
    {"DuplicateColumn",
     [](CEncapFamily& f, Fixture&) { Table(f).DuplicateColumn(2, L"B", L"B_AGAIN_AND_AGAIN"); }},
    {"CopyRow", [](CEncapFamily& f, Fixture&) { Table(f).CopyRow(L"r2"); }},
    {"PasteRow", [](CEncapFamily& f, Fixture&) { Table(f).PasteRow(0, 1); }},
    {"DeleteRow", [](CEncapFamily& f, Fixture&) { Table(f).DeleteRow(0); }},
    {"DeleteColumn", [](CEncapFamily& f, Fixture&) { Table(f).DeleteColumn(4); }},
    {"DeleteLocalizedColumn", [](CEncapFamily& f, Fixture&) { Table(f).DeleteColumn(6); }},
    {"MoveRow",
     [](CEncapFamily& f, Fixture&) {
         int index = 0;
         Table(f).ChangeRowIndex(L"r2", index);
     }},
    {"MoveColumn",
     [](CEncapFamily& f, Fixture&) {
         int index = 5;
         Table(f).ChangeColumnIndex(L"A", index);
     }},
    {"SetStatus", [](CEncapFamily& f, Fixture&) { Table(f).SetStatusColValue(0, L"Suppressed"); }},
    {"BumpRevisions", [](CEncapFamily& f, Fixture&) { Table(f).BumpAllMemberRevisions(nullptr); }},
    {"RangeValues",
     [](CEncapFamily& f, Fixture&) {
         f.SetRangeColumnValues({{L"C", L"4"}});
     }},
    {"Repair",
     [](CEncapFamily& f, Fixture&) { Table(f).ValidateAndRepairColumnData(&ColumnOf(f, L"A")); }},
    {"SetDisplayName", [](CEncapFamily& f, Fixture&) { f.SetDisplayName(L"a new name for all"); }},
    {"SetProperty",
     [](CEncapFamily& f, Fixture&) {
         f.SetFamilyProperty(FamilyPropManufacturer, L"a manufacturer of a long name");
     }},
    {"SetConstant",
     [](CEncapFamily& f, Fixture&) { f.SetCatParamConstValue(L"local", L"a constant value"); }},
    {"SetLink", [](CEncapFamily& f, Fixture& fixture) { f.SetLink(fixture.Open().get(), true); }},
    {"ColumnMapping",
     [](CEncapFamily& f, Fixture&) {
         ColumnOf(f, L"A").SetIsGeometryColumn(true);
         f.GetEncapFamilyMapping()->UpdateColumnMapping(
             &ColumnOf(f, L"A"), L"k2", L"", CEncapFamilyColVexilData::kUserParameterObject);
     }},
    {"CategoryMapping",
     [](CEncapFamily& f, Fixture&) {
         f.GetEncapFamilyMapping()->AddParamToColumnMapping(&ColumnOf(f, L"S"), L"c", L"other");
         f.GetCategoryParamColumn(L"other");
     }},
    {"CopyWithStrings",
     [](CEncapFamily& f, Fixture&) {
         XMLParser copy;
         f.GetFamilyXMLCopyWithStrings(copy);
     }},
    {"SaveFiles",
     [](CEncapFamily& f, Fixture& fixture) {
         f.GetFamilyXML().SaveXmlDocument(fixture.Folder().File(L"saved.xml").c_str(), false);
         f.SaveFamilyStringsXMLs();
     }},
};

class Allocations : public testing::TestWithParam<Operation> {};

/// The family after a failure: it can be read and saved, and where there was memory to take back
/// what was begun, what it holds and reads is what its saved documents say.
void ExpectWhole(CEncapFamily& family, Failing failing, Fixture& fixture)
{
    const Content content = ContentOf(family);
    const auto reopened = fixture.Open(content);
    ASSERT_NE(reopened->GetEncapFamilyTable(), nullptr);
    const Content again = ContentOf(*reopened);
    if (failing == Failing::FromThenOn) {
        return;
    }
    EXPECT_EQ(Narrow({again.family}), Narrow({content.family}));
    EXPECT_EQ(Narrow(again.strings), Narrow(content.strings));
    EXPECT_EQ(Narrow(again.rows), Narrow(content.rows));
    EXPECT_EQ(Narrow(again.columns), Narrow(content.columns));
    EXPECT_EQ(Narrow(again.values), Narrow(content.values));
}

/// Whether the operation, with its n-th allocation failing, got past that many allocations.
bool FailsAt(long n, Failing failing, const Operation& operation, Fixture& fixture)
{
    const auto family = fixture.Open();
    ContentOf(*family); // fills the value cache, too
    bool hasFailed = false;
    try {
        const FailingAllocation allocation(n, failing);
        try {
            operation.run(*family, fixture);
        } catch (const std::bad_alloc&) {
        }
        hasFailed = allocation.HasFailed();
    } catch (...) {
        ADD_FAILURE() << "something else than std::bad_alloc was thrown";
    }
    if (hasFailed) {
        ExpectWhole(*family, failing, fixture);
        operation.run(*family, fixture);
    }
    return hasFailed;
}

/// The allocations that a run leaves behind. What is left once and not again is the C++ runtime's:
/// some keep what they made for the first exception.
template <class Run>
long LeftByEachRun(Fixture& fixture, const Run& run)
{
    long left = 0;
    for (int i = 0; i < 2 && (i == 0 || left != 0); ++i) {
        fixture.ForgetCalls();
        const long live = LiveAllocations();
        run();
        fixture.ForgetCalls();
        left = LiveAllocations() - live;
    }
    return left;
}

} // namespace

TEST_P(Allocations, AFailedOneLeavesAWholeFamilyAndNoLeak)
{
    Fixture fixture;
    constexpr long kMost = 20000;
    for (const Failing failing : {Failing::Once, Failing::FromThenOn}) {
        FailsAt(kMost, failing, GetParam(), fixture); // what is made once is made
        bool goesOn = true;
        for (long n = 1; goesOn; ++n) {
            ASSERT_LT(n, kMost);
            const long left =
                LeftByEachRun(fixture, [&] { goesOn = FailsAt(n, failing, GetParam(), fixture); });
            ASSERT_FALSE(HasFailure()) << "allocation " << n;
            ASSERT_EQ(left, 0) << "allocation " << n;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Edits, Allocations, testing::ValuesIn(kOperations),
                         [](const auto& test) { return test.param.name; });

TEST(AllocationsOfOpening, AFailedOneLeavesNothingBehind)
{
    Fixture fixture;
    const CString xml = fixture.Xml();
    const std::vector<CString> strings{L"<S xml:lang='en'/>"};
    const CString cache = fixture.Folder().File(L"");
    for (const Failing failing : {Failing::Once, Failing::FromThenOn}) {
        bool isDone = false;
        for (long n = 1; !isDone; ++n) {
            const long left = LeftByEachRun(fixture, [&] {
                std::unique_ptr<CEncapFamily> family;
                const FailingAllocation allocation(n, failing);
                try {
                    family = std::make_unique<CEncapFamily>(xml.c_str(), strings, cache.c_str(),
                                                            &fixture.Host(), false);
                    CString value;
                    family->GetEncapFamilyTable()->GetValue(L"r1", L"B", value);
                    CToc toc;
                    toc.SetToc(
                        XMLParser(L"<T><Families><Family InternalName='a'/></Families></T>"));
                } catch (const std::bad_alloc&) {
                }
                family.reset(); // writes the value cache
                isDone = !allocation.HasFailed();
            });
            ASSERT_EQ(left, 0) << "allocation " << n;
        }
    }
    // What was written meanwhile is read as the values that they are.
    const auto family =
        std::make_unique<CEncapFamily>(xml.c_str(), strings, cache.c_str(), &fixture.Host(), false);
    EXPECT_EQ(CellText(*family, L"r1", L"B"), L"3#8");
}
