#include "encap/host/StandaloneEvaluatorProvider.h"

#include "encap/host/Calculator.h"
#include "encap/host/MaterialTable.h"

#include <cmath>
#include <limits>

namespace encap::host {

struct StandaloneState {
    /// The record for a call that begins: nothing has failed in it.
    EvaluationError& Begin(ErrorSource source = ErrorSource::Expression)
    {
        attempt.kind = ErrorKind::None;
        attempt.source = source;
        return attempt;
    }
    /// Keeps the reason of the call that failed and gives its status.
    int32_t KeepFailure()
    {
        error = attempt;
        isSentenceMade = false;
        return error.Status();
    }
    int32_t KeepFailure(ErrorKind kind, std::wstring_view token = {})
    {
        attempt.kind = kind;
        attempt.position = 0;
        attempt.token.Assign(token);
        return KeepFailure();
    }

    bool acceptComma = false;
    UnitTable units;
    MaterialTable materials;
    EvaluationError attempt; // of the call that runs, here since clearing it would cost more
    EvaluationError error;   // of the last failed call
    // The answer given last: its text is put together once for a table of lengths.
    Dimensions databaseDimensions;
    CString databaseUnit;
    // Made from the error when it is asked for: formulas that are tried with units first may fail
    // in every row of a table without anybody asking.
    CString sentence;
    bool isSentenceMade = true;
};

namespace {

constexpr double kNoResult = std::numeric_limits<double>::quiet_NaN();

std::wstring_view ViewOf(const wchar_t* text)
{
    return text != nullptr ? std::wstring_view(text) : std::wstring_view();
}

// A number with its sign, blanks around; false where the text is anything else.
bool ReadNumberText(std::wstring_view text, bool acceptComma, double& number)
{
    Scanner scanner(text, acceptComma);
    scanner.SkipBlanks();
    const bool isNegative = scanner.Peek() == L'-';
    if (isNegative || scanner.Peek() == L'+') {
        scanner.Skip(1);
    }
    if (!scanner.AtNumber()) {
        return false;
    }
    number = scanner.ReadNumber();
    number = isNegative ? -number : number;
    scanner.SkipBlanks();
    return scanner.AtEnd();
}

double Convert(double number, const Unit& from, const Unit& to)
{
    if (from.dimensions != to.dimensions) {
        return number;
    }
    if (from.offset == to.offset && from.scale == to.scale) {
        return number;
    }
    return from.scale.Over(to.scale).Apply(number + from.offset) - to.offset;
}

} // namespace

} // namespace encap::host

using namespace encap::host;

CStandaloneEvaluatorProvider::CStandaloneEvaluatorProvider(wchar_t decimalSeparator)
    : m_state(std::make_unique<StandaloneState>())
{
    m_state->acceptComma = decimalSeparator == L',';
}

CStandaloneEvaluatorProvider::~CStandaloneEvaluatorProvider() = default;

int32_t CStandaloneEvaluatorProvider::EvaluateExpression(const wchar_t* expression,
                                                         const wchar_t* unit, double& value)
{
    value = kNoResult;
    EvaluationError& error = m_state->Begin();
    Unit asked;
    if (!m_state->units.FindText(ViewOf(unit), asked, error)) {
        return m_state->KeepFailure();
    }
    const Calculator::Request request{ViewOf(expression), ViewOf(unit), asked,
                                      m_state->acceptComma};
    double result = kNoResult;
    if (!Calculator(request, m_state->units, error).Run(result)) {
        return m_state->KeepFailure();
    }
    value = result;
    return std::isnan(result) ? StatusNoValue : StatusOK;
}

int32_t CStandaloneEvaluatorProvider::ConvertUnits(const wchar_t* value, const wchar_t* fromUnit,
                                                   const wchar_t* toUnit, double& result)
{
    result = kNoResult;
    EvaluationError& error = m_state->Begin(ErrorSource::Value);
    Unit from;
    Unit to;
    double number = 0.0;
    if (!m_state->units.FindText(ViewOf(fromUnit), from, error) ||
        !m_state->units.FindText(ViewOf(toUnit), to, error)) {
        return m_state->KeepFailure();
    }
    if (!ReadNumberText(ViewOf(value), m_state->acceptComma, number)) {
        return m_state->KeepFailure(ErrorKind::NotANumber, ViewOf(value));
    }
    if (from.dimensions != to.dimensions && !from.isUnitless && !to.isUnitless) {
        error.source = ErrorSource::None;
        error.left = from.dimensions;
        error.right = to.dimensions;
        return m_state->KeepFailure(ErrorKind::ConversionMisfit);
    }
    result = Arithmetic::FiniteOrNaN(Convert(number, from, to));
    return std::isnan(result) ? StatusNoValue : StatusOK;
}

int32_t CStandaloneEvaluatorProvider::GetDatabaseUnit(const wchar_t* unit, CString& databaseUnit)
{
    databaseUnit.clear();
    Unit found;
    if (!m_state->units.FindText(ViewOf(unit), found, m_state->Begin())) {
        return m_state->KeepFailure();
    }
    if (m_state->databaseUnit.empty() || m_state->databaseDimensions != found.dimensions) {
        m_state->databaseUnit = found.dimensions.DatabaseUnit();
        m_state->databaseDimensions = found.dimensions;
    }
    databaseUnit = m_state->databaseUnit;
    return StatusOK;
}

int32_t CStandaloneEvaluatorProvider::GetMaterialName(const wchar_t* key, CString& name)
{
    const CString* found = m_state->materials.NameOf(ViewOf(key));
    name = found != nullptr ? *found : CString();
    if (found != nullptr) {
        return StatusOK;
    }
    m_state->Begin(ErrorSource::None);
    return m_state->KeepFailure(ErrorKind::UnknownMaterialKey, ViewOf(key));
}

int32_t CStandaloneEvaluatorProvider::GetMaterialRefKey(const wchar_t* name, CString& key)
{
    const CString* found = m_state->materials.KeyOf(ViewOf(name));
    key = found != nullptr ? *found : CString();
    if (found != nullptr) {
        return StatusOK;
    }
    m_state->Begin(ErrorSource::None);
    return m_state->KeepFailure(ErrorKind::UnknownMaterialName, ViewOf(name));
}

bool CStandaloneEvaluatorProvider::LoadMaterials(const CString& csvText)
{
    if (m_state->materials.Load(csvText, m_state->Begin())) {
        return true;
    }
    m_state->KeepFailure();
    return false;
}

const CString& CStandaloneEvaluatorProvider::LastError() const
{
    if (!m_state->isSentenceMade) {
        m_state->sentence = m_state->error.Sentence();
        m_state->isSentenceMade = true;
    }
    return m_state->sentence;
}
