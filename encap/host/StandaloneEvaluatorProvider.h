#pragma once

#include "encap/evaluation/EvaluatorProvider.h"

#include <memory>

namespace encap::host {
struct StandaloneState;
}

/// A ready host: expressions with units, unit conversion and a material table, for programs that
/// have no CAD system behind them. Its language is described in docs/host-language.md; units come
/// from UDUNITS-2, whose unit database is read when the first unit is asked for. It belongs to the
/// program that makes it and must outlive the families it is handed to. One provider is used on one
/// thread at a time; different providers may be used on different threads. The calls into UDUNITS-2
/// share one lock, so a program that calls that library itself must not do so at the same time on
/// another thread. Units in texts are "ul" or empty for unitless; null texts count as empty.
class ENCAP_API CStandaloneEvaluatorProvider : public IEvaluatorProvider {
public:
    /// What the operations return. On a failure an output number is NaN and an output text empty.
    enum Status : int32_t {
        StatusOK = 0,
        StatusNoValue = 1, ///< a valid text without a result (1/0); the number is NaN
        StatusBadSyntax = -1,
        StatusUnknownName = -2, ///< a unit, function, constant or material that there is not
        StatusBadDimensions = -3,
        StatusNoUnitDatabase = -4
    };

    /// decimalSeparator L',' accepts "," beside "." in numbers; any other mark leaves ".".
    explicit CStandaloneEvaluatorProvider(wchar_t decimalSeparator = L'.');
    ~CStandaloneEvaluatorProvider() override;
    CStandaloneEvaluatorProvider(const CStandaloneEvaluatorProvider&) = delete;
    CStandaloneEvaluatorProvider& operator=(const CStandaloneEvaluatorProvider&) = delete;

    /// The value is in database units: kg, cm, s, A, K, mol, cd, rad and their products.
    int32_t EvaluateExpression(const wchar_t* expression, const wchar_t* unit,
                               double& value) override;
    /// "ul" converts to and from every unit unchanged, where the two do not fit each other.
    int32_t ConvertUnits(const wchar_t* value, const wchar_t* fromUnit, const wchar_t* toUnit,
                         double& result) override;
    /// "cm", "rad", "ul", "kg*cm/s^2", "1/s".
    int32_t GetDatabaseUnit(const wchar_t* unit, CString& databaseUnit) override;
    int32_t GetMaterialName(const wchar_t* key, CString& name) override;
    int32_t GetMaterialRefKey(const wchar_t* name, CString& key) override;

    /// Replaces the material table by the lines of a text in RFC 4180's form: a key and a name a
    /// line, after an optional heading "key,name" in any case. Keys and names compare exactly; the
    /// last of equal ones holds. A line without exactly two cells, or quotes that do not match,
    /// give false and leave the table as it was.
    [[nodiscard]] bool LoadMaterials(const CString& csvText);

    /// What was wrong in the last failed call, in English, with the character counted from 1; empty
    /// before the first failure. Valid until the next call.
    [[nodiscard]] const CString& LastError() const;

private:
    std::unique_ptr<encap::host::StandaloneState> m_state;
};
