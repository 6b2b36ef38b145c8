#pragma once

#include "tests/cli/CliRun.h"

#include <filesystem>

namespace encap::test {

/// A small library of pins in a folder of its own: families of one column D each, whose documents
/// stand in folders of their names.
class LibraryFolder {
public:
    /// Cells of D by row: r1, r2 and so on.
    std::string AddFamily(const std::string& name, const std::vector<std::string>& diameters,
                          const std::string& columns = "")
    {
        std::string text = "<Family InternalName='id-" + name + "' DisplayName='" + name +
                           "'><FamilyTable><Columns><Column ColumnId='D' ValueType='double' "
                           "UnitType='mm'/>" +
                           columns + "</Columns><Rows>";
        for (std::size_t i = 0; i < diameters.size(); ++i) {
            text += "<Row RowId='r" + std::to_string(i + 1) + "'><Cell ColumnId='D'>" +
                    diameters[i] + "</Cell></Row>";
        }
        return AddFile(name + "/" + name + ".xml", text + "</Rows></FamilyTable></Family>");
    }
    std::string AddFile(const std::string& name, const std::string& bytes)
    {
        const std::filesystem::path path = m_folder.Native(platform::Utf8ToWide(name));
        std::filesystem::create_directories(path.parent_path());
        WriteFile(m_folder, platform::Utf8ToWide(name), bytes);
        return Path(name);
    }
    /// With "/" on every platform, as results have it.
    [[nodiscard]] std::string Path(const std::string& name = "") const
    {
        const std::u8string path = m_folder.Native().generic_u8string();
        return std::string(path.begin(), path.end()) + (name.empty() ? "" : "/" + name);
    }
    /// A text of a run with the folder's path left out.
    [[nodiscard]] std::string Short(const std::string& text) const
    {
        return Replaced(text, Path() + "/", "");
    }

private:
    TemporaryFolder m_folder;
};

} // namespace encap::test
