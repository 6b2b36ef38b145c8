#include "cli/FamilyFile.h"

#include "cli/CommandError.h"
#include "cli/Paths.h"
#include "cli/TextFile.h"
#include "encap/xml/XMLNodeArray.h"

#include <algorithm>
#include <utility>

namespace encap::cli {
namespace {

/// The files that a family document names for its strings, in its order.
std::vector<CString> StringsReferences(const XMLParser& family)
{
    std::vector<CString> names;
    XMLNode strings;
    XMLNodeArray files;
    if (family.GetRootNode().GetChildNode(L"FamilyStrings", strings)) {
        strings.SelectChildNodes(L"File", files);
    }
    for (const XMLNode& file : files) {
        CString name;
        if (file.GetProperty(L"FullFileName", name) && !name.empty()) {
            names.push_back(std::move(name));
        }
    }
    return names;
}

void RequireTable(const XMLParser& family, const CString& path)
{
    XMLNode table;
    if (!family.GetRootNode().GetChildNode(L"FamilyTable", table)) {
        throw FileError(path,
                        L"not a family document: its document element has no \"FamilyTable\"");
    }
}

} // namespace

FamilyFile::FamilyFile(const CString& path, const FamilyFileOptions& options)
    : m_path(path), m_document(ParseXmlFile(path, L"a family document", options.fingerprint))
{
    ReadReferences(options);
    for (const CString& added : options.addedStrings) {
        ReadStrings(added, false, options);
    }
}

std::vector<CString> FamilyFile::Languages() const
{
    std::vector<CString> languages;
    for (const StringsFile& strings : m_strings) {
        languages.push_back(strings.language);
    }
    return languages;
}

void FamilyFile::RequireNotRead(const CString& output) const
{
    cli::RequireNotRead(output, m_path);
    for (const StringsFile& strings : m_strings) {
        cli::RequireNotRead(output, strings.path);
    }
}

void FamilyFile::ReadReferences(const FamilyFileOptions& options)
{
    for (const CString& name : StringsReferences(m_document)) {
        try {
            ReadStrings(ResolveReference(m_path, name), true, options);
        } catch (const FileError& error) {
            if (options.stringsProblems == nullptr) {
                throw;
            }
            options.stringsProblems->push_back(platform::Utf8ToWide(error.what()));
        }
    }
}

void FamilyFile::ReadStrings(const CString& path, bool isReferenced,
                             const FamilyFileOptions& options)
{
    StringsFile strings{
        path, {}, ParseXmlFile(path, L"a strings document", options.fingerprint), isReferenced};
    strings.document.GetRootNode().GetProperty(L"xml:lang", strings.language);
    Enter(std::move(strings));
}

void FamilyFile::Enter(StringsFile strings)
{
    const auto same =
        std::find_if(m_strings.begin(), m_strings.end(),
                     [&](const StringsFile& other) { return other.language == strings.language; });
    if (same != m_strings.end()) {
        *same = std::move(strings);
    } else {
        m_strings.push_back(std::move(strings));
    }
}

std::unique_ptr<CEncapFamily> FamilyFile::Open(IEvaluatorProvider* provider,
                                               const CString& firstLanguage,
                                               const CString& cacheFolder,
                                               bool localizeDecimalSeparator)
{
    RequireTable(m_document, m_path);
    std::vector<XMLParser> documents;
    for (StringsFile& strings : m_strings) {
        const bool isFirst = strings.language == firstLanguage;
        documents.insert(isFirst ? documents.begin() : documents.end(),
                         std::exchange(strings.document, {}));
    }
    return std::make_unique<CEncapFamily>(std::exchange(m_document, {}), documents,
                                          cacheFolder.c_str(), provider, localizeDecimalSeparator);
}

} // namespace encap::cli
