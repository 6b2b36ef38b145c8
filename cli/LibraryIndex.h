#pragma once

#include "encap/foundation/Types.h"

#include <map>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace encap::cli {

/// Finds the documents of families below a folder by internal name. Documents are looked into only
/// when they are asked for, those in folders of the expected name first.
class LibraryIndex {
public:
    /// Throws FileError for a folder that cannot be read.
    explicit LibraryIndex(const CString& folder);

    /// The first document (by path) of the family, one in a folder of that name before others;
    /// empty when there is none.
    [[nodiscard]] CString Find(const CString& internalName, const CString& folderName);

private:
    CString LookInto(const std::vector<CString>& paths, const CString& internalName);
    void LookIntoAll();
    void Look(const CString& path);

    std::vector<CString> m_paths;
    std::unordered_map<CString, std::vector<CString>> m_byFolder;
    std::unordered_map<CString, CString> m_names; ///< of the documents that were looked into
    std::unordered_map<CString, CString> m_found; ///< the path by the name, once complete
    bool m_isComplete = false;
};

} // namespace encap::cli
