#pragma once

#include "encap/foundation/Types.h"

class IEvaluatorProvider;

namespace encap {

/// Calls of the host's provider. A call without a provider, or one that throws, is a failed one.
class HostCalls {
public:
    explicit HostCalls(IEvaluatorProvider* provider) : m_provider(provider) {}

    [[nodiscard]] bool HasProvider() const { return m_provider != nullptr; }
    /// The host's status: negative is failure.
    int32_t Evaluate(const CString& expression, const CString& unit, double& value) const;
    /// False leaves result as it was; a number that is not finite is a failure.
    bool Convert(const CString& value, const CString& fromUnit, const CString& toUnit,
                 double& result) const;
    bool DatabaseUnit(const CString& unit, CString& databaseUnit) const;
    /// Whatever text the host leaves; empty without a provider.
    CString MaterialName(const wchar_t* key) const;
    CString MaterialKey(const wchar_t* name) const;

private:
    IEvaluatorProvider* m_provider;
};

} // namespace encap
