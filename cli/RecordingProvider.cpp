#include "cli/RecordingProvider.h"

#include "encap/foundation/TextFormat.h"

#include <cmath>
#include <string_view>

namespace encap::cli {

RecordingProvider::RecordingProvider(wchar_t decimalSeparator) : m_host(decimalSeparator) {}

bool RecordingProvider::LoadMaterials(const CString& csvText)
{
    m_hasMaterials = m_host.LoadMaterials(csvText);
    return m_hasMaterials;
}

void RecordingProvider::Forget()
{
    m_hasFailure = false;
    m_endedInFailure = false;
    m_lastWasExpression = false;
}

const FailedQuestion* RecordingProvider::LastFailure() const
{
    return m_hasFailure ? &m_failure : nullptr;
}

int32_t RecordingProvider::EvaluateExpression(const wchar_t* expression, const wchar_t* unit,
                                              double& value)
{
    const int32_t status = m_host.EvaluateExpression(expression, unit, value);
    if (status >= 0 && std::isfinite(value)) {
        NoteSuccess();
        return status;
    }
    // The library asks again without units as soon as an expression has failed.
    const bool isSecondTry =
        m_endedInFailure && m_lastWasExpression && unit == std::wstring_view(L"ul");
    if (!isSecondTry) {
        Remember(FormatText(L"compute \"%s\" in %s", {expression, unit}), status);
    }
    m_lastWasExpression = !isSecondTry;
    return status;
}

int32_t RecordingProvider::ConvertUnits(const wchar_t* value, const wchar_t* fromUnit,
                                        const wchar_t* toUnit, double& result)
{
    const int32_t status = m_host.ConvertUnits(value, fromUnit, toUnit, result);
    if (status >= 0 && std::isfinite(result)) {
        NoteSuccess();
    } else {
        Remember(FormatText(L"convert %s from %s to %s", {value, fromUnit, toUnit}), status);
    }
    return status;
}

int32_t RecordingProvider::GetDatabaseUnit(const wchar_t* unit, CString& databaseUnit)
{
    const int32_t status = m_host.GetDatabaseUnit(unit, databaseUnit);
    if (status >= 0) {
        NoteSuccess();
    } else {
        Remember(FormatText(L"name the database unit of %s", {unit}), status);
    }
    return status;
}

int32_t RecordingProvider::GetMaterialName(const wchar_t* key, CString& name)
{
    if (!m_hasMaterials) {
        name = key;
        return CStandaloneEvaluatorProvider::StatusOK;
    }
    return m_host.GetMaterialName(key, name);
}

int32_t RecordingProvider::GetMaterialRefKey(const wchar_t* name, CString& key)
{
    if (!m_hasMaterials) {
        key = name;
        return CStandaloneEvaluatorProvider::StatusOK;
    }
    return m_host.GetMaterialRefKey(name, key);
}

void RecordingProvider::Remember(CString question, int32_t status)
{
    m_failure.text = std::move(question);
    m_failure.reason =
        status < 0 ? m_host.LastError()
                   : L"it has no value (a division by zero, or an operand outside a function's "
                     L"range)";
    m_hasFailure = true;
    m_endedInFailure = true;
    m_lastWasExpression = false;
}

void RecordingProvider::NoteSuccess()
{
    m_endedInFailure = false;
    m_lastWasExpression = false;
}

} // namespace encap::cli
