#include "encap/host/UnitDatabase.h"
#include "encap/host/UnitList.h"
#include "encap/platform/Encoding.h"
#include "encap/platform/Files.h"

#include <set>
#include <string>

#include <gtest/gtest.h>
#include <udunits2.h>

namespace encap::host {
namespace {

constexpr const char* kList = ENCAP_UNIT_LIST;

/// The names of the list: of prefixes, and of units and the others.
struct Names {
    std::set<std::string> prefixes;
    std::set<std::string> units;
};

std::string ListText()
{
    std::string bytes;
    EXPECT_TRUE(platform::ReadWholeFile(platform::Utf8ToWide(kList), bytes)) << kList;
    return bytes;
}

Names NamesIn(const std::string& text)
{
    Names names;
    for (std::size_t begin = 0; begin < text.size(); begin = text.find('\n', begin) + 1) {
        const std::size_t tab = text.find('\t', begin);
        if (text[begin] != '#') {
            auto& group = text.compare(begin, 6, "prefix") == 0 ? names.prefixes : names.units;
            group.insert(text.substr(tab + 1, text.find_first_of("\t\n", tab + 1) - tab - 1));
        }
    }
    return names;
}

class UnitListAndLibrary : public testing::Test {
protected:
    UnitListAndLibrary()
    {
        const std::string text = ListText();
        EXPECT_TRUE(m_list.Read(text));
        m_names = NamesIn(text);
    }

    /// The list says of the name what UDUNITS-2 says.
    void ExpectSame(const std::string& name)
    {
        Unit expected;
        Unit actual;
        const ErrorKind kind = m_database.Find(platform::Utf8ToWide(name), expected);
        ASSERT_EQ(m_list.Find(name, actual), kind) << name;
        ASSERT_EQ(actual.scale, expected.scale) << name;
        ASSERT_EQ(actual.dimensions, expected.dimensions) << name;
        ASSERT_DOUBLE_EQ(actual.offset, expected.offset) << name;
    }

    UnitList m_list;
    UnitDatabase m_database; // UDUNITS-2
    Names m_names;
};

TEST_F(UnitListAndLibrary, KnowTheSameNames)
{
    ASSERT_GT(m_names.units.size(), 700U);
    for (const std::string& name : m_names.units) {
        ExpectSame(name);
    }
    for (const char* name :
         {"METER",  "Inches", "PSI", "PA",        "pa",    "mM",  "xyz",           "m_",
          "kilo",   "k",      "da",  "decameter", "dekam", "kkm", "kilokilometer", "kilokm",
          "kmegam", "min",    "cd",  "ft",        "dam",   "Ym",  "\xCE\xBCm",     "\xC2\xB5m",
          "per"}) {
        ExpectSame(name);
    }
}

TEST_F(UnitListAndLibrary, ReadPrefixesAlike)
{
    for (const std::string& prefix : m_names.prefixes) {
        for (const std::string& name : m_names.units) {
            if (name != "%") { // stands alone
                ExpectSame(prefix + name);
            }
            if (HasFatalFailure()) {
                return;
            }
        }
    }
}

int RememberMessage(const char*, va_list)
{
    ADD_FAILURE() << "a message of UDUNITS-2 came through";
    return 0;
}

TEST(Udunits, TheProgramsMessageHandlerIsKeptAndNotCalled)
{
    const ut_error_message_handler before = ut_set_error_message_handler(RememberMessage);
    UnitDatabase database;
    Unit unit;
    EXPECT_EQ(database.Find(L"furlongz", unit), ErrorKind::UnknownUnit);
    EXPECT_EQ(ut_set_error_message_handler(before), RememberMessage);
}

TEST(UnitLists, WhatIsNoListIsRefusedWhole)
{
    Unit unit;
    for (const char* text : {"", "# empty\n", "unit\tm\t1.0\t0.0\n", "unit\tm\t1,0\t0.0\tm1\n",
                             "unit\tm\t1.0\t0.0\tm1\nunit\tx\t1\t0\tq1\n", "prefix\tkilo\n",
                             "<unit-system/>\n", "unit\tm\t1.0\t0.0\tm300\n"}) {
        UnitList list;
        EXPECT_FALSE(list.Read(text)) << text;
        EXPECT_EQ(list.Find("m", unit), ErrorKind::UnknownUnit) << text;
    }
    UnitList list;
    EXPECT_TRUE(list.Read("unit\tmeter\t1.0\t0.0\tm1\r\nprefix\tkilo\t1e3\r\n"));
    EXPECT_EQ(list.Find("KiloMeter", unit), ErrorKind::None);
    EXPECT_EQ(unit.ToDatabase(2.0), 200000.0);
}

} // namespace
} // namespace encap::host
