#include "encap/foundation/NumberText.h"
#include "encap/host/StandaloneEvaluatorProvider.h"
#include "encap/platform/Encoding.h"
#include "fuzz/Support.h"
#include "fuzz/Targets.h"

#include <cmath>

namespace encap::fuzz {
namespace {

void RequireAnswer(const CStandaloneEvaluatorProvider& provider, int32_t status, double value)
{
    Require(status <= 1, "a status is one of the documented ones");
    Require((status == 0) == std::isfinite(value), "a number comes with success, and only then");
    Require(status >= 0 || !provider.LastError().empty(), "a failure gives its reason");
}

void Ask(CStandaloneEvaluatorProvider& provider, const CString& unit, const CString& text)
{
    double value = 0.0;
    double again = 0.0;
    const int32_t status = provider.EvaluateExpression(text.c_str(), unit.c_str(), value);
    RequireAnswer(provider, status, value);
    Require(provider.EvaluateExpression(text.c_str(), unit.c_str(), again) == status &&
                (status != 0 || value == again),
            "an expression has one answer");
    CString database;
    if (provider.GetDatabaseUnit(unit.c_str(), database) == 0) {
        CString same;
        Require(provider.GetDatabaseUnit(database.c_str(), same) == 0 && same == database,
                "a database unit is its own");
    }
    const int32_t converted =
        provider.ConvertUnits(text.c_str(), unit.c_str(), database.c_str(), value);
    RequireAnswer(provider, converted, value);
    RequireAnswer(provider, provider.ConvertUnits(L"1", text.c_str(), unit.c_str(), value), value);
}

} // namespace

void RunLanguage(std::string_view input)
{
    const auto [unitBytes, textBytes] = SplitAt(input, '\n');
    const CString unit = platform::Utf8ToWide(unitBytes);
    const CString text = platform::Utf8ToWide(textBytes);
    static CStandaloneEvaluatorProvider comma(L',');
    Ask(SharedProvider(), unit, text);
    Ask(comma, unit, text);
    CStandaloneEvaluatorProvider materials;
    CString name;
    if (materials.LoadMaterials(text)) {
        materials.GetMaterialName(unit.c_str(), name);
        materials.GetMaterialRefKey(name.c_str(), name);
    } else {
        Require(materials.GetMaterialName(unit.c_str(), name) < 0,
                "a refused material table leaves none");
    }
}

} // namespace encap::fuzz
