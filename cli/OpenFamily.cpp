#include "cli/OpenFamily.h"

#include "cli/CommandError.h"
#include "cli/Options.h"
#include "encap/foundation/CaseFolding.h"

#include <algorithm>

namespace encap::cli {
namespace {

/// The asked language in the family's spelling; without one the family's first.
CString ChooseLanguage(const FamilyFile& file, const std::optional<CString>& asked)
{
    const std::vector<CString> languages = file.Languages();
    if (!asked) {
        return languages.empty() ? CString() : languages.front();
    }
    const auto found =
        std::find_if(languages.begin(), languages.end(),
                     [&](const CString& language) { return EqualNoCase(language, *asked); });
    if (found != languages.end()) {
        return *found;
    }
    if (languages.empty() && asked->empty()) {
        return {};
    }
    CString known;
    for (const CString& language : languages) {
        known += (known.empty() ? L"" : L", ") + language;
    }
    throw UsageError(
        file.Path() + L": there are no strings in the language '" + *asked +
        (known.empty() ? L"': the family has no strings documents" : L"': there are " + known));
}

} // namespace

void FamilyOptions::Declare(Options& options)
{
    options.Text(language, "--language", "TAG",
                 "The language of texts, as its strings document has it (default: the first)");
    options.Texts(strings, "--strings", "FILE",
                  "A strings document beside those that the family names; takes the place of one "
                  "in the same language");
}

OpenFamily::OpenFamily(const CString& path, const FamilyOptions& options, FamilyHost& host,
                       std::vector<CString>* stringsProblems)
    : m_host(host), m_fingerprint(host.Settings()),
      m_file(path, {options.strings, stringsProblems, host.HasCache() ? &m_fingerprint : nullptr}),
      m_language(ChooseLanguage(m_file, options.language))
{
    const CString cacheFolder = host.HasCache() ? host.MakeCacheFolder(m_fingerprint) : CString();
    m_family = m_file.Open(&host.Provider(), m_language, cacheFolder, host.LocalizesDecimals());
}

CEncapFamilyTable& OpenFamily::Table() const
{
    return *m_family->GetEncapFamilyTable();
}

} // namespace encap::cli
