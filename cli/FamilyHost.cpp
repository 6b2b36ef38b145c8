#include "cli/FamilyHost.h"

#include "cli/CommandError.h"
#include "cli/Options.h"
#include "cli/TextFile.h"
#include "encap/foundation/StringUtil.h"
#include "encap/foundation/Version.h"
#include "encap/platform/Files.h"

namespace encap::cli {

void HostOptions::Declare(Options& options)
{
    options.Text(materials, "--materials", "FILE",
                 "The names of materials: CSV with a key and a name a line");
    options.Flag(localizeDecimals, "--localize-decimals",
                 "Read and print numbers with the decimal separator of the user's locale");
    options.Text(cache, "--cache", "DIR",
                 "Keep computed values below this folder for the next run");
}

FamilyHost::FamilyHost(const HostOptions& options)
    : m_localizesDecimals(options.localizeDecimals),
      m_separator(options.localizeDecimals ? CStringUtil::GetDecimalSeparator() : L'.'),
      m_cache(options.cache), m_provider(m_separator)
{
    const CString settings{m_localizesDecimals ? L'l' : L'-', m_separator};
    m_settings.Add(platform::WideToUtf8(settings));
    m_settings.Add(platform::WideToUtf8(kVersion));
    if (options.materials.empty()) {
        return;
    }
    if (!m_provider.LoadMaterials(ReadTextFile(options.materials, &m_settings))) {
        throw FileError(options.materials, L"not a material table: each line holds a key and a "
                                           L"name, separated by a comma");
    }
}

void FamilyHost::ReadUnits()
{
    CString ignored;
    static_cast<void>(m_provider.GetDatabaseUnit(L"m", ignored));
    m_provider.Forget();
}

CString FamilyHost::MakeCacheFolder(const Fingerprint& fingerprint) const
{
    CString folder =
        platform::WithTrailingSeparator(m_cache) + platform::Utf8ToWide(fingerprint.Hex());
    if (!platform::MakeDirectories(folder)) {
        throw FileError(folder, L"the cache folder cannot be made");
    }
    return folder;
}

} // namespace encap::cli
