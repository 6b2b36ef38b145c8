#pragma once

#include "encap/foundation/Types.h"

class CEncapFamily;

/// The host's expression engine, unit system and material library, as the library borrows them.
/// The host derives from it and hands one instance to each CEncapFamily; it must outlive the
/// family, which never deletes it. Called on the thread that uses the family. Statuses are signed:
/// negative is failure, 0 success, positive a qualified success. A call that throws counts as
/// failed. Units are the host's texts; "ul" is unitless.
class ENCAP_API IEvaluatorProvider {
public:
    IEvaluatorProvider() = default;
    IEvaluatorProvider(const IEvaluatorProvider&) = default;
    IEvaluatorProvider& operator=(const IEvaluatorProvider&) = default;
    virtual ~IEvaluatorProvider();

    /// Computes an expression whose bare numbers are in unit; value is in the host's database
    /// units. A non-negative status also means "the text is a valid expression".
    virtual int32_t EvaluateExpression(const wchar_t* expression, const wchar_t* unit,
                                       double& value) = 0;
    /// Converts the number in the text value between two units.
    virtual int32_t ConvertUnits(const wchar_t* value, const wchar_t* fromUnit,
                                 const wchar_t* toUnit, double& result) = 0;
    /// The database unit of a unit's kind, "cm" for lengths.
    virtual int32_t GetDatabaseUnit(const wchar_t* unit, CString& databaseUnit) = 0;
    /// The name of a material key; name starts empty and is taken whatever the status.
    virtual int32_t GetMaterialName(const wchar_t* key, CString& name) = 0;
    /// The key of a material name; key starts empty and is taken whatever the status.
    virtual int32_t GetMaterialRefKey(const wchar_t* name, CString& key) = 0;

protected:
    /// The family this provider serves; null before a family is made with it and after that family
    /// is gone.
    [[nodiscard]] CEncapFamily* GetEncapFamily() const { return m_family; }

private:
    friend class CEncapFamily;
    void SetEncapFamily(CEncapFamily* family) { m_family = family; }

    CEncapFamily* m_family = nullptr;
};
