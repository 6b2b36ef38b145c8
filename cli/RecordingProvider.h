#pragma once

#include "encap/host/StandaloneEvaluatorProvider.h"

namespace encap::cli {

/// A question that the host did not answer.
struct FailedQuestion {
    CString text;   ///< "compute \"5kg+1mm\" in mm", "convert ...", "name the database unit of ..."
    CString reason; ///< the host's
};

/// The command line's host: the standalone provider, and a memory for its last failure. Without a
/// material table the names of materials are their keys. Threads as the provider it wraps.
class RecordingProvider : public IEvaluatorProvider {
public:
    /// As CStandaloneEvaluatorProvider.
    explicit RecordingProvider(wchar_t decimalSeparator);

    /// The text of a material table; false when it is none.
    [[nodiscard]] bool LoadMaterials(const CString& csvText);

    /// Forgets what failed: called before the cell that is watched.
    void Forget();
    /// The last question that failed since Forget, or null. An expression that is asked again
    /// without units counts once, as it was asked first.
    [[nodiscard]] const FailedQuestion* LastFailure() const;
    /// The last question of all since Forget has failed.
    [[nodiscard]] bool EndedInFailure() const { return m_endedInFailure; }

    int32_t EvaluateExpression(const wchar_t* expression, const wchar_t* unit,
                               double& value) override;
    int32_t ConvertUnits(const wchar_t* value, const wchar_t* fromUnit, const wchar_t* toUnit,
                         double& result) override;
    int32_t GetDatabaseUnit(const wchar_t* unit, CString& databaseUnit) override;
    int32_t GetMaterialName(const wchar_t* key, CString& name) override;
    int32_t GetMaterialRefKey(const wchar_t* name, CString& key) override;

private:
    void Remember(CString question, int32_t status);
    void NoteSuccess();

    CStandaloneEvaluatorProvider m_host;
    bool m_hasMaterials = false;
    FailedQuestion m_failure;
    bool m_hasFailure = false;
    bool m_endedInFailure = false;
    bool m_lastWasExpression = false;
};

} // namespace encap::cli
