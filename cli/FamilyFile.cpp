#include "cli/FamilyFile.h"

#include "cli/CommandError.h"
#include "cli/Paths.h"
#include "cli/TextFile.h"
#include "cli/XmlTags.h"
#include "encap/xml/XMLNodeArray.h"

#include <algorithm>
#include <utility>

namespace encap::cli {
namespace {

/// The files that a family text names for its strings, in its order.
std::vector<CString> StringsReferences(const CString& familyText)
{
    const CString element(ChildElementText(familyText, L"FamilyStrings"));
    std::vector<CString> names;
    const XMLParser document(element);
    XMLNodeArray files;
    document.GetRootNode().SelectChildNodes(L"File", files);
    for (const XMLNode& file : files) {
        CString name;
        if (file.GetProperty(L"FullFileName", name) && !name.empty()) {
            names.push_back(std::move(name));
        }
    }
    return names;
}

void RequireTable(CEncapFamily& family, const CString& path, const CString& text)
{
    if (family.GetEncapFamilyTable() == nullptr) {
        throw FileError(path, L"not a family document: " + ReasonOfRefusal(text));
    }
    XMLNode table;
    if (!family.GetFamilyXML().GetRootNode().GetChildNode(L"FamilyTable", table)) {
        throw FileError(path,
                        L"not a family document: its document element has no \"FamilyTable\"");
    }
}

} // namespace

FamilyFile::FamilyFile(const CString& path, const FamilyFileOptions& options)
    : m_path(path), m_text(ReadXmlFile(path, options.fingerprint))
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

void FamilyFile::ReadReferences(const FamilyFileOptions& options)
{
    for (const CString& name : StringsReferences(m_text)) {
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

// Parsed here too, so that the fault is told of the file that has it: the library leaves out what
// does not parse.
void FamilyFile::ReadStrings(const CString& path, bool isReferenced,
                             const FamilyFileOptions& options)
{
    StringsFile strings{path, {}, ReadXmlFile(path, options.fingerprint), isReferenced};
    const XMLNode root = XMLParser(strings.text).GetRootNode();
    if (!root.IsNode()) {
        throw FileError(path, L"not a strings document: " + ReasonOfRefusal(strings.text));
    }
    root.GetProperty(L"xml:lang", strings.language);
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
    std::vector<CString> texts;
    for (StringsFile& strings : m_strings) {
        const bool isFirst = strings.language == firstLanguage;
        texts.insert(isFirst ? texts.begin() : texts.end(), std::exchange(strings.text, {}));
    }
    auto family = std::make_unique<CEncapFamily>(m_text.c_str(), texts, cacheFolder.c_str(),
                                                 provider, localizeDecimalSeparator);
    RequireTable(*family, m_path, m_text);
    CString().swap(m_text);
    return family;
}

} // namespace encap::cli
