#pragma once

#include "encap/foundation/Types.h"
#include "encap/icons/Bytes.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

// Resources of executables and libraries (PE, 32 and 64 bit), read as data on every platform.
// docs/formats/pe-icons.md describes the format.
namespace encap {

inline constexpr uint16_t kIconResourceType = 3;
inline constexpr uint16_t kIconGroupResourceType = 14;

/// A resource's name: a number, or a text that compares without regard to case.
struct ResourceName {
    uint16_t number = 0;
    CString text; ///< empty: the number counts

    /// The name that a caller passes: a pointer below 0x10000 is the number itself, a text "#12" is
    /// the number 12. Nothing for null, the empty text and "#" without a number below 0x10000.
    static std::optional<ResourceName> FromPointer(const wchar_t* name);
    /// The text that a caller passes for the name.
    [[nodiscard]] CString AsText() const;
};

/// The resource tree of one file. It refers to the file's bytes. The tree has exactly three levels
/// (type, name, language), and no more are followed, so a tree that leads back into itself ends.
class PeResources {
public:
    /// Nothing when the bytes are no PE file, 16-bit executables included. A file without resources
    /// gives a tree in which nothing is found.
    static std::optional<PeResources> Open(ByteView file);

    /// The bytes of a resource in its first language (the neutral one where there is one). Nothing
    /// when it is missing or any step on the way, or its bytes, lie outside the file.
    [[nodiscard]] std::optional<ByteView> Find(uint16_t type, const ResourceName& name) const;

    /// Takes the name of a resource and its bytes as Find gives them; false for no more.
    using Visitor = std::function<bool(const ResourceName& name, std::optional<ByteView> bytes)>;
    /// Hands over every resource of a type in the order of the tree: text names, then numbers. One
    /// whose name lies outside the file is left out.
    void ForEach(uint16_t type, const Visitor& visit) const;

private:
    struct Section {
        uint32_t address = 0;
        uint32_t fileBytes = 0;
        uint32_t fileOffset = 0;
    };

    explicit PeResources(ByteView file) : m_file(file) {}
    bool ReadHeaders();
    void ReadSections(ByteView table);
    bool FindTree(ByteView optionalHeader);
    /// All bytes from the address to the end of its section, as far as the file holds them.
    [[nodiscard]] ByteView BytesAt(uint32_t address) const;
    [[nodiscard]] std::optional<uint32_t> FindNumber(uint32_t directory, uint16_t number) const;
    [[nodiscard]] std::optional<uint32_t> FindText(uint32_t directory, const CString& text) const;
    [[nodiscard]] std::optional<uint32_t> FirstEntry(uint32_t directory) const;
    [[nodiscard]] bool IsText(uint32_t offset, const CString& text, std::size_t unitCount) const;
    [[nodiscard]] std::optional<CString> TextAt(uint32_t offset) const;
    /// The bytes that a directory of languages leads to.
    [[nodiscard]] std::optional<ByteView> FirstLanguage(std::optional<uint32_t> languages) const;

    ByteView m_file;
    ByteView m_tree;                 ///< from the root directory to the end of its section
    std::vector<Section> m_sections; ///< by rising address
};

/// One icon image of a group directory.
struct IconGroupEntry {
    uint32_t width = 0; ///< pixels
    uint32_t height = 0;
    uint32_t bitsPerPixel = 0;
    uint16_t imageId = 0;
};

/// The entries of an icon group; nothing when the bytes are shorter than its count says.
[[nodiscard]] std::optional<std::vector<IconGroupEntry>> ReadIconGroup(ByteView group);

/// The entry whose size is nearest to the default icon's, and of those the deepest of up to 32 bits
/// per pixel; null when there is none.
[[nodiscard]] const IconGroupEntry* BestIcon(const std::vector<IconGroupEntry>& entries);

} // namespace encap
