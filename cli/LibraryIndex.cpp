#include "cli/LibraryIndex.h"

#include "cli/DocumentHead.h"
#include "cli/FileSearch.h"
#include "cli/Paths.h"

#include <algorithm>

namespace encap::cli {
namespace {

/// The name of the folder that a file stands in.
CString FolderNameOf(const CString& path)
{
    CString folder = FolderOf(path);
    while (!folder.empty() && (folder.back() == L'/' || folder.back() == L'\\')) {
        folder.pop_back();
    }
    return FileNameOf(folder);
}

} // namespace

LibraryIndex::LibraryIndex(const CString& folder) : m_paths(XmlFilesBelow(folder))
{
    std::sort(m_paths.begin(), m_paths.end());
    for (const CString& path : m_paths) {
        m_byFolder[FolderNameOf(path)].push_back(path);
    }
}

CString LibraryIndex::Find(const CString& internalName, const CString& folderName)
{
    // Which damaged documents have too.
    if (internalName.empty()) {
        return {};
    }
    const auto expected = m_byFolder.find(folderName);
    if (expected != m_byFolder.end()) {
        CString path = LookInto(expected->second, internalName);
        if (!path.empty()) {
            return path;
        }
    }
    if (!m_isComplete) {
        LookIntoAll();
    }
    const auto found = m_found.find(internalName);
    return found != m_found.end() ? found->second : CString();
}

CString LibraryIndex::LookInto(const std::vector<CString>& paths, const CString& internalName)
{
    for (const CString& path : paths) {
        Look(path);
        const auto name = m_names.find(path);
        if (name != m_names.end() && name->second == internalName) {
            return path;
        }
    }
    return {};
}

void LibraryIndex::LookIntoAll()
{
    for (const CString& path : m_paths) {
        Look(path);
        const auto name = m_names.find(path);
        if (name != m_names.end()) {
            m_found.try_emplace(name->second, path);
        }
    }
    m_isComplete = true;
}

void LibraryIndex::Look(const CString& path)
{
    const auto [entry, isNew] = m_names.try_emplace(path);
    if (!isNew) {
        return;
    }
    const DocumentHead head = ReadDocumentHead(path);
    // A damaged document counts too: what is wrong with it is told when it is opened.
    if (head.kind != DocumentKind::Family && head.kind != DocumentKind::Unknown) {
        m_names.erase(entry);
        return;
    }
    entry->second = head.internalName;
}

} // namespace encap::cli
