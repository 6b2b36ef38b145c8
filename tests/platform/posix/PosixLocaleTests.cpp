#include "encap/platform/Locale.h"
#include "tests/platform/posix/EnvironmentVariable.h"

#include <gtest/gtest.h>

namespace encap::platform {
namespace {

int32_t IdIn(const char* all, const char* numeric, const char* lang)
{
    const EnvironmentVariable first("LC_ALL", all);
    const EnvironmentVariable second("LC_NUMERIC", numeric);
    const EnvironmentVariable third("LANG", lang);
    return UserLocaleId();
}

TEST(PosixLocale, TheFirstVariableThatIsSetNamesTheLocale)
{
    EXPECT_EQ(IdIn(nullptr, nullptr, nullptr), 127);
    EXPECT_EQ(IdIn(nullptr, nullptr, "de_DE"), 1031);
    EXPECT_EQ(IdIn(nullptr, "fr_FR", "de_DE"), 1036);
    EXPECT_EQ(IdIn("en_US", "fr_FR", "de_DE"), 1033);
    EXPECT_EQ(IdIn("", "", "de_DE"), 1031);
}

TEST(PosixLocale, NamesLoseTheirCodesetAndOnlyUnknownModifiers)
{
    const std::pair<const char*, int32_t> cases[] = {
        {"C", 127},
        {"POSIX", 127},
        {"C.UTF-8", 127},
        {"de_DE.UTF-8", 1031},
        {"de_AT.ISO-8859-15@euro", 3079},
        {"sr_RS", 10266},
        {"sr_RS.UTF-8@latin", 9242},
        {"ca_ES@valencia", 2051},
        {"zh_CN.GB18030", 2052},
    };
    for (const auto& [name, id] : cases) {
        EXPECT_EQ(IdIn(name, nullptr, nullptr), id) << name;
    }
}

TEST(PosixLocale, UnknownNamesHaveAStableNumberOfTheirOwn)
{
    // FNV-1a of "xx_YY" is 0x8FF64E6C.
    const int32_t id = IdIn("xx_YY.UTF-8", nullptr, nullptr);
    EXPECT_EQ(id, 0x10000 + 0x4E6C);
    EXPECT_EQ(IdIn("xx_YY.utf8", nullptr, nullptr), id);
    EXPECT_NE(IdIn("xx_YZ", nullptr, nullptr), id);
}

TEST(PosixLocale, TheSeparatorIsAPointWhereTheLocaleIsMissingOrPlain)
{
    for (const char* name : {"C", "POSIX", "xx_YY.UTF-8", "not a locale"}) {
        const EnvironmentVariable all("LC_ALL", name);
        EXPECT_EQ(UserDecimalSeparator(), L'.') << name;
    }
}

TEST(PosixLocale, OverridesNestAndEnd)
{
    const EnvironmentVariable all("LC_ALL", "C");
    {
        const ScopedUserLocale german(L',', 1031);
        {
            const ScopedUserLocale other(L'\'', 2055);
            EXPECT_EQ(UserDecimalSeparator(), L'\'');
            EXPECT_EQ(UserLocaleId(), 2055);
        }
        EXPECT_EQ(UserDecimalSeparator(), L',');
        EXPECT_EQ(UserLocaleId(), 1031);
    }
    EXPECT_EQ(UserDecimalSeparator(), L'.');
    EXPECT_EQ(UserLocaleId(), 127);
}

} // namespace
} // namespace encap::platform
