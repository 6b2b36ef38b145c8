#include "cli/FileBatch.h"

#include "cli/CommandError.h"
#include "encap/platform/Files.h"

#include <optional>

namespace encap::cli {

void FileBatch::Add(CString path, std::string bytes)
{
    m_files.push_back({std::move(path), std::move(bytes)});
}

void FileBatch::Write() const
{
    std::vector<std::optional<std::string>> before;
    for (const File& file : m_files) {
        std::string old;
        before.push_back(platform::ReadWholeFile(file.path, old)
                             ? std::optional<std::string>(std::move(old))
                             : std::nullopt);
        if (platform::ReplaceFileContent(file.path, file.bytes)) {
            continue;
        }
        bool isRestored = true;
        for (std::size_t i = 0; i + 1 < before.size(); ++i) {
            isRestored &= before[i] ? platform::ReplaceFileContent(m_files[i].path, *before[i])
                                    : platform::DeleteFileIfPresent(m_files[i].path);
        }
        throw FileError(file.path, isRestored
                                       ? L"the file cannot be written; nothing was changed"
                                       : L"the file cannot be written, and files that were written "
                                         L"before it could not be put back");
    }
}

} // namespace encap::cli
