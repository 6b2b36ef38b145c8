#include "pin_family.h"

#include <encap/encap.h>

namespace {

// Answers every expression with 5 cm and converts centimetres to millimetres.
class FixedProvider : public IEvaluatorProvider {
public:
    int32_t EvaluateExpression(const wchar_t*, const wchar_t*, double& value) override
    {
        value = 5.0;
        return 0;
    }
    int32_t ConvertUnits(const wchar_t*, const wchar_t*, const wchar_t*, double& result) override
    {
        result = 50.0;
        return 0;
    }
    int32_t GetDatabaseUnit(const wchar_t*, CString& databaseUnit) override
    {
        databaseUnit = L"cm";
        return 0;
    }
    int32_t GetMaterialName(const wchar_t*, CString&) override { return -1; }
    int32_t GetMaterialRefKey(const wchar_t*, CString&) override { return -1; }
};

} // namespace

int main()
{
    FixedProvider provider;
    CEncapFamily family(kPinFamily, {}, L"", &provider, false);
    CString length;
    const auto result = family.GetEncapFamilyTable()->GetValue(L"r1", L"L", length);
    return result == CTableEvaluator::EvaluateOK && length == L"50" ? 0 : 1;
}
