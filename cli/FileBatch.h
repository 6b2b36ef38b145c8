#pragma once

#include "encap/foundation/Types.h"

#include <string>
#include <vector>

namespace encap::cli {

/// Files that are written together: each is replaced as one step, and when one cannot be written,
/// those before it are put back as they were.
class FileBatch {
public:
    void Add(CString path, std::string bytes);
    /// Throws FileError.
    void Write() const;

private:
    struct File {
        CString path;
        std::string bytes;
    };
    std::vector<File> m_files;
};

} // namespace encap::cli
