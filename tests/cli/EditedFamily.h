#pragma once

#include "tests/cli/CliRun.h"

#include <filesystem>
#include <map>

namespace encap::test {

/// A copy of the family tests/data/cli/edit with its strings documents, for commands to change.
class EditedFamily {
public:
    EditedFamily()
    {
        std::filesystem::copy(TestData("edit"), m_folder.Native(),
                              std::filesystem::copy_options::recursive);
    }
    [[nodiscard]] const TemporaryFolder& Folder() const { return m_folder; }
    [[nodiscard]] std::string Path() const { return File(L"edit.xml"); }
    [[nodiscard]] std::string File(const CString& name) const { return Utf8(m_folder.File(name)); }

    /// Runs "COMMAND [ACTION] edit.xml ARGUMENTS"; the family's path stands for "FAMILY".
    [[nodiscard]] CliRun Run(std::vector<std::string> arguments) const
    {
        std::replace(arguments.begin(), arguments.end(), std::string("FAMILY"), Path());
        return CliRun(arguments);
    }
    /// Both streams, without the folder in paths.
    [[nodiscard]] std::string Output(const std::vector<std::string>& arguments) const
    {
        const CliRun run = Run(arguments);
        return Replaced(run.out + run.err, Utf8(m_folder.File(L"")), "");
    }
    /// The bytes of every file by its name below the folder.
    [[nodiscard]] std::map<std::string, std::string> Files() const
    {
        std::map<std::string, std::string> files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_folder.Native())) {
            if (entry.is_regular_file()) {
                const std::string path = entry.path().generic_string();
                files[path.substr(m_folder.Native().generic_string().size() + 1)] = ReadFile(path);
            }
        }
        return files;
    }
    [[nodiscard]] std::string Table(const std::string& file, const std::string& language) const
    {
        return CliRun({"table", file, "--format", "csv", "--language", language}).out;
    }

private:
    TemporaryFolder m_folder;
};

} // namespace encap::test
