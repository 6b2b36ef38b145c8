#include "encap/host/UnitTable.h"
#include "tests/host/HostCases.h"

#include <clocale>
#include <numbers>
#include <string>

namespace {

using Provider = CStandaloneEvaluatorProvider;
constexpr double kPi = std::numbers::pi;
// By definition: a pound in kg, an inch in cm, the standard gravity in cm/s2.
constexpr double kPound = 0.45359237;
constexpr double kInch = 2.54;
constexpr double kGravity = 980.665;

TEST(Units, FactorsAreTheDefinedOnes)
{
    const struct {
        const wchar_t* quantity;
        const wchar_t* unit;
        double value;
    } cases[] = {
        {L"1mm", L"mm", 0.1},
        {L"1in", L"in", kInch},
        {L"1ft", L"ft", 12 * kInch},
        {L"1\u00B5m", L"um", 1e-4},
        {L"1lb", L"lb", kPound},
        {L"1lbf", L"lbf", kPound * kGravity},
        {L"1psi", L"psi", kPound * kGravity / (kInch * kInch)},
        {L"1N", L"N", 100},
        {L"1MPa", L"N/mm2", 1e4},
        {L"1bar", L"bar", 1e3},
        {L"1J", L"J", 1e4},
        {L"1l", L"l", 1e3},
        {L"1h", L"h", 3600},
        {L"1km/h", L"km/h", 1e5 / 3600},
        {L"180deg", L"deg", kPi},
        {L"200grad", L"grad", kPi},
        {L"1arcmin", L"arcmin", kPi / 180 / 60},
        {L"60rpm", L"rpm", 2 * kPi},
        {L"1g", L"g", 1e-3},
        {L"1mol", L"mol", 1},
    };
    Provider provider;
    for (const auto& each : cases) {
        ExpectValue(provider, each.quantity, each.unit, each.value);
        ExpectValue(provider, L"1", each.unit, each.value / std::stod(each.quantity));
    }
}

TEST(Units, DatabaseUnitTexts)
{
    const struct {
        const wchar_t* unit;
        const wchar_t* databaseUnit;
    } cases[] = {
        {L"mm", L"cm"},
        {L"cm", L"cm"},
        {L"mm2", L"cm^2"},
        {L" mm^2 ", L"cm^2"},
        {L"kg m^-3", L"kg/cm^3"},
        {L"N", L"kg*cm/s^2"},
        {L"J/kg K", L"cm^2*K/s^2"},
        {L"W / m2", L"kg/s^3"},
        {L"Hz", L"1/s"},
        {L"1/s2", L"1/s^2"},
        {L"1 mm", L"cm"},
        {L"deg", L"rad"},
        {L"rpm", L"rad/s"},
        {L"sr", L"rad^2"},
        {L"lx", L"cd*rad^2/cm^2"},
        {L"ohm", L"kg*cm^2/s^3/A^2"},
        {L"kat", L"mol/s"},
        {L"degF", L"K"},
        {L"ul", L"ul"},
        {L"", L"ul"},
        {L"1", L"ul"},
        {L"%", L"ul"},
        {nullptr, L"ul"},
    };
    Provider provider;
    for (const auto& each : cases) {
        CString text = L"before";
        EXPECT_EQ(provider.GetDatabaseUnit(each.unit, text), 0)
            << encap::platform::WideToUtf8(provider.LastError());
        EXPECT_EQ(encap::platform::WideToUtf8(text),
                  encap::platform::WideToUtf8(each.databaseUnit));
        // The text is a unit in its own right, and of the same kind.
        CString again;
        EXPECT_EQ(provider.GetDatabaseUnit(text.c_str(), again), 0);
        EXPECT_EQ(again, text);
    }
}

TEST(Units, DatabaseUnitOfABadText)
{
    for (const wchar_t* unit : {L"furlongz", L"mm*", L"/s", L"m^", L"m^1.5", L"ul/s", L"2mm",
                                L"degC/s", L"m-2", L"(m)", L"PI", L"min(", L"m128"}) {
        CString text = L"before";
        Provider provider;
        EXPECT_LT(provider.GetDatabaseUnit(unit, text), 0) << encap::platform::WideToUtf8(unit);
        EXPECT_TRUE(text.empty());
        EXPECT_NE(provider.LastError().find(L" of the unit)"), CString::npos);
    }
}

TEST(Units, Conversions)
{
    const struct {
        const wchar_t* value;
        const wchar_t* from;
        const wchar_t* to;
        double result;
    } cases[] = {
        {L"12", L"mm", L"in", 12 / 25.4}, {L"-1e+06", L"cm", L"km", -10},
        {L" +2.5 ", L"mm", L"mm", 2.5},   {L"29", L"cm", L"m", 0.29},
        {L"180", L"deg", L"rad", kPi},    {L"3", L"N/mm2", L"MPa", 3},
        {L"20", L"degC", L"degF", 68},    {L"0", L"K", L"degC", -273.15},
        {L"7", L"ul", L"mm", 7},          {L"7", L"degC", L"", 7},
        {L"0.5", L"ul", L"percent", 50},  {L"1.5", L"cm", L"ul", 1.5},
    };
    Provider provider;
    for (const auto& each : cases) {
        SCOPED_TRACE(encap::platform::WideToUtf8(each.value));
        double result = 0.0;
        EXPECT_EQ(provider.ConvertUnits(each.value, each.from, each.to, result), 0);
        EXPECT_NEAR(result, each.result, 1e-12 * std::max(1.0, std::abs(each.result)));
    }
}

TEST(Units, ConversionsThatFail)
{
    const struct {
        const wchar_t* value;
        const wchar_t* from;
        const wchar_t* to;
        int32_t status;
        const char* reason;
    } cases[] = {
        {L"1", L"mm", L"kg", Provider::StatusBadDimensions, "cm cannot be converted to kg"},
        {L"1", L"percent", L"kg", Provider::StatusBadDimensions,
         "a number without a unit cannot be converted to kg"},
        {L"1", L"mm", L"furlongz", Provider::StatusUnknownName,
         "\"furlongz\" is not a known unit (at character 1 of the unit)"},
        {L"nan", L"mm", L"cm", Provider::StatusBadSyntax,
         "\"nan\" is not a number (at character 1 of the value)"},
        {nullptr, L"mm", L"cm", Provider::StatusBadSyntax,
         "\"\" is not a number (at character 1 of the value)"},
        {L"2 3", L"mm", L"cm", Provider::StatusBadSyntax,
         "\"2 3\" is not a number (at character 1 of the value)"},
    };
    Provider provider;
    for (const auto& each : cases) {
        double result = 0.0;
        EXPECT_EQ(provider.ConvertUnits(each.value, each.from, each.to, result), each.status);
        EXPECT_TRUE(std::isnan(result));
        EXPECT_EQ(encap::platform::WideToUtf8(provider.LastError()), each.reason);
    }
    double result = 0.0;
    EXPECT_EQ(provider.ConvertUnits(L"1e308", L"km", L"um", result), Provider::StatusNoValue);
}

// Without its database the provider knows its own units and says of others why it does not.
TEST(Units, AMissingDatabaseIsAReasonAndNotAnUnknownUnit)
{
    encap::host::UnitTable table("/no/such/folder/units.xml");
    encap::host::EvaluationError error;
    encap::host::Unit unit;
    for (int i = 0; i < 2; ++i) {
        EXPECT_FALSE(table.FindText(L"mm", unit, error));
        EXPECT_EQ(error.Status(), Provider::StatusNoUnitDatabase);
        EXPECT_EQ(encap::platform::WideToUtf8(error.Sentence()),
                  "\"mm\" cannot be looked up: the unit database of UDUNITS-2 cannot be read"
                  " (at character 1 of the unit)");
    }
    EXPECT_TRUE(table.FindText(L"deg", unit, error));
    EXPECT_TRUE(table.FindText(L"ul", unit, error));
}

// A host often calls setlocale for its own texts; numbers in the unit database have points.
TEST(Units, TheProcessLocaleDoesNotMatter)
{
    const std::string before = std::setlocale(LC_ALL, nullptr);
    const char* const names[] = {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "German"};
    const bool isFound = std::any_of(std::begin(names), std::end(names), [](const char* name) {
        return std::setlocale(LC_ALL, name) != nullptr;
    });
    Provider provider;
    ExpectValue(provider, L"2.5in", L"in", 2.5 * kInch);
    std::setlocale(LC_ALL, before.c_str());
    if (!isFound) {
        GTEST_SKIP() << "no locale with a decimal comma on this machine";
    }
}

} // namespace
