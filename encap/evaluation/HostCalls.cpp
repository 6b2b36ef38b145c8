#include "encap/evaluation/HostCalls.h"

#include "encap/evaluation/EvaluatorProvider.h"

#include <cmath>
#include <new>

namespace encap {

namespace {

constexpr int32_t kFailed = -1;

// Out of memory is the one exception that may leave the library.
template <class Call>
int32_t Guarded(Call call)
{
    try {
        return call();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        return kFailed;
    }
}

} // namespace

int32_t HostCalls::Evaluate(const CString& expression, const CString& unit, double& value) const
{
    if (m_provider == nullptr) {
        return kFailed;
    }
    return Guarded(
        [&] { return m_provider->EvaluateExpression(expression.c_str(), unit.c_str(), value); });
}

bool HostCalls::Convert(const CString& value, const CString& fromUnit, const CString& toUnit,
                        double& result) const
{
    if (m_provider == nullptr) {
        return false;
    }
    double converted = 0.0;
    const int32_t status = Guarded([&] {
        return m_provider->ConvertUnits(value.c_str(), fromUnit.c_str(), toUnit.c_str(), converted);
    });
    if (status < 0 || !std::isfinite(converted)) {
        return false;
    }
    result = converted;
    return true;
}

bool HostCalls::DatabaseUnit(const CString& unit, CString& databaseUnit) const
{
    if (m_provider == nullptr) {
        return false;
    }
    databaseUnit.clear();
    return Guarded([&] { return m_provider->GetDatabaseUnit(unit.c_str(), databaseUnit); }) >= 0;
}

CString HostCalls::MaterialName(const wchar_t* key) const
{
    CString name;
    if (m_provider != nullptr) {
        Guarded([&] { return m_provider->GetMaterialName(key, name); });
    }
    return name;
}

CString HostCalls::MaterialKey(const wchar_t* name) const
{
    CString key;
    if (m_provider != nullptr) {
        Guarded([&] { return m_provider->GetMaterialRefKey(name, key); });
    }
    return key;
}

} // namespace encap
