#pragma once

#include "encap/encap.h"

namespace bench {

/// A host whose answers cost next to nothing: what remains is the library's own work. Every number
/// is converted from a database unit, as lengths in millimetres are.
class FreeProvider : public IEvaluatorProvider {
public:
    int32_t EvaluateExpression(const wchar_t* expression, const wchar_t*, double& value) override
    {
        value = static_cast<double>(expression[0]) * 0.37;
        return 0;
    }
    int32_t ConvertUnits(const wchar_t* value, const wchar_t*, const wchar_t*,
                         double& result) override
    {
        result = static_cast<double>(value[0]) * 1.73;
        return 0;
    }
    int32_t GetDatabaseUnit(const wchar_t*, CString& databaseUnit) override
    {
        databaseUnit = L"cm";
        return 0;
    }
    int32_t GetMaterialName(const wchar_t*, CString&) override { return 0; }
    int32_t GetMaterialRefKey(const wchar_t*, CString&) override { return 0; }
};

} // namespace bench
