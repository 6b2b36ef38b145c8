#pragma once

#include "cli/Fingerprint.h"
#include "cli/RecordingProvider.h"

namespace encap::cli {

class Options;

/// The arguments of every command that evaluates.
struct HostOptions {
    /// --materials, --localize-decimals and --cache
    void Declare(Options& options);

    CString materials;
    bool localizeDecimals = false;
    CString cache;
};

/// What families are evaluated with: the provider, the separator of decimals and the folder of
/// value caches. One serves any number of families, one after the other on one thread: units and
/// materials are read once.
class FamilyHost {
public:
    /// Throws FileError for the material table.
    explicit FamilyHost(const HostOptions& options = {});
    FamilyHost(const FamilyHost&) = delete;
    FamilyHost& operator=(const FamilyHost&) = delete;

    [[nodiscard]] RecordingProvider& Provider() { return m_provider; }
    /// Reads the units now, on whatever thread, instead of when the first is asked for. Families
    /// may be opened meanwhile, but nothing evaluated.
    void ReadUnits();
    [[nodiscard]] bool LocalizesDecimals() const { return m_localizesDecimals; }
    [[nodiscard]] bool HasCache() const { return !m_cache.empty(); }
    /// Of everything but the families that values depend on.
    [[nodiscard]] const Fingerprint& Settings() const { return m_settings; }
    /// The folder of one family, named by the fingerprint of all that its values depend on, so that
    /// a family that has changed finds no values of before. Made when missing; throws FileError.
    /// REQUIRES: there is a cache.
    [[nodiscard]] CString MakeCacheFolder(const Fingerprint& fingerprint) const;

private:
    bool m_localizesDecimals;
    wchar_t m_separator;
    CString m_cache;
    RecordingProvider m_provider;
    Fingerprint m_settings;
};

} // namespace encap::cli
