#include "cli/FamilyList.h"

#include "cli/CommandError.h"
#include "cli/DocumentHead.h"
#include "cli/FileSearch.h"
#include "cli/LibraryIndex.h"
#include "cli/Options.h"
#include "cli/Paths.h"
#include "cli/TocFile.h"
#include "encap/foundation/NumberText.h"
#include "encap/foundation/TextFormat.h"
#include "encap/platform/Files.h"

#include <map>
#include <set>

namespace encap::cli {
namespace {

struct Shard {
    std::size_t number = 1;
    std::size_t count = 1;
};

Shard ReadShard(const CString& text)
{
    if (text.empty()) {
        return {};
    }
    const std::size_t slash = text.find(L'/');
    const auto number = ReadInteger(text.substr(0, slash));
    const auto count = slash != CString::npos ? ReadInteger(text.substr(slash + 1)) : std::nullopt;
    if (!number || !count || *number < 1 || *number > *count) {
        throw UsageError(L"--shard: '" + text +
                         L"' is not I/N, as 2/8 for the second of eight shards: I counts from 1 "
                         L"to N");
    }
    return {static_cast<std::size_t>(*number), static_cast<std::size_t>(*count)};
}

/// Gathers the families of paths, by normal path and, behind these, by internal name where none was
/// found.
class FamilyCollector {
public:
    explicit FamilyCollector(const CString& library) : m_library(library) {}

    void Add(const CString& path);
    [[nodiscard]] std::vector<ListedFamily> Shown(const Shard& shard) const;
    /// No path leads to a family, or to one that should be there.
    [[nodiscard]] bool IsEmpty() const { return m_found.empty() && m_missing.empty(); }

private:
    void AddFolder(const CString& folder);
    void AddFile(const CString& path);
    void AddMatches(const CString& pattern);
    void AddIfFamily(const CString& path);
    void AddToc(const CString& path);
    void Enter(const CString& path) { m_found.try_emplace(NormalPath(path), path); }

    const CString& m_library;
    std::map<CString, CString> m_found;
    std::map<CString, CString> m_missing;
    std::set<CString> m_unfit; ///< patterns that fit nothing
};

void FamilyCollector::Add(const CString& path)
{
    if (IsDirectory(path)) {
        AddFolder(path);
    } else if (!platform::FileExists(path) && IsPattern(path)) {
        AddMatches(path);
    } else {
        AddFile(path);
    }
}

void FamilyCollector::AddFolder(const CString& folder)
{
    for (const CString& path : XmlFilesBelow(folder)) {
        AddIfFamily(path);
    }
}

void FamilyCollector::AddFile(const CString& path)
{
    if (IsStream(path)) {
        Enter(path);
        return;
    }
    switch (ReadDocumentHead(path).kind) {
    case DocumentKind::TableOfContents: AddToc(path); break;
    // The shell puts them beside the families that a pattern is meant for.
    case DocumentKind::Strings: break;
    default: Enter(path);
    }
}

void FamilyCollector::AddMatches(const CString& pattern)
{
    const std::vector<CString> paths = PathsMatching(pattern);
    for (const CString& path : paths) {
        IsDirectory(path) ? AddFolder(path) : AddIfFamily(path);
    }
    if (paths.empty()) {
        m_unfit.insert(pattern);
    }
}

// Damaged documents are kept: they may be families.
void FamilyCollector::AddIfFamily(const CString& path)
{
    const DocumentKind kind = ReadDocumentHead(path).kind;
    if (kind == DocumentKind::Family || kind == DocumentKind::Unknown) {
        Enter(path);
    }
}

void FamilyCollector::AddToc(const CString& path)
{
    CToc toc = ReadToc(path);
    CString folder = m_library.empty() ? FolderOf(path) : m_library;
    folder = folder.empty() ? L"." : folder;
    LibraryIndex library(folder);
    toc.ResetIter();
    for (XMLNode entry; toc.NextNode(entry);) {
        const CString name = InternalNameOf(entry);
        CString folderName;
        entry.GetProperty(L"FolderName", folderName);
        const CString found = library.Find(name, folderName);
        if (!found.empty()) {
            Enter(found);
            continue;
        }
        m_missing.try_emplace(name,
                              FormatText(L"%s: there is no document of the family \"%s\" (%s) "
                                         L"below %s",
                                         {path, name, TitleOf(entry), folder}));
    }
}

std::vector<ListedFamily> FamilyCollector::Shown(const Shard& shard) const
{
    std::vector<ListedFamily> shown;
    std::size_t position = 0;
    const auto isShown = [&] { return position++ % shard.count == shard.number - 1; };
    for (const auto& [key, path] : m_found) {
        if (isShown()) {
            shown.push_back({path, {}, {}});
        }
    }
    for (const auto& [name, problem] : m_missing) {
        if (isShown()) {
            shown.push_back({{}, problem, name});
        }
    }
    for (const CString& pattern : m_unfit) {
        if (isShown()) {
            shown.push_back({pattern, pattern + L": nothing fits this pattern", {}});
        }
    }
    return shown;
}

} // namespace

void FamilyListOptions::Declare(Options& options)
{
    options.Text(library, "--library", "DIR",
                 "Where the families of a table of contents are (default: its folder)");
    options.Text(shard, "--shard", "I/N",
                 "Of N parts of the list, which together are all of it, only the I-th");
}

std::vector<ListedFamily> ListFamilies(const std::vector<CString>& paths,
                                       const FamilyListOptions& options)
{
    const Shard shard = ReadShard(options.shard);
    FamilyCollector families(options.library);
    for (const CString& path : paths) {
        families.Add(path);
    }
    if (families.IsEmpty()) {
        throw FileError(paths.front(),
                        L"there is no family document" +
                            CString(paths.size() > 1 ? L" here nor in the others" : L" here"));
    }
    return families.Shown(shard);
}

} // namespace encap::cli
