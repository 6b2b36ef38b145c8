#pragma once

#include "encap/icons/Messages.h"
#include "encap/icons/OwnedIcon.h"

#include <cstdint>
#include <string>
#include <vector>

// ICO files in memory. docs/formats/ico.md describes the format.
namespace encap {

inline constexpr uint32_t kIcoHeaderBytes = 6;
inline constexpr uint32_t kIcoEntryBytes = 16;
/// In place of an image count: the header is wrong or short.
inline constexpr uint32_t kBadIcoHeader = 0xFFFFFFFF;

/// A read icon, or why there is none.
struct IcoReading {
    OwnedIcon icon; ///< null on failure
    Error_ReadIconFromICOFile error = ReadIcon_Success;
    /// What the read without codes shows. It tells apart what the codes do not: memory that an
    /// image cannot have is ReadIcon_ImageUnreachable, but its message is that of the record's.
    IconMessage message = IconMessage::OpenIconFile;
};

/// Reads the bytes of an ICO file; the name goes into the record. Nothing is allocated that the
/// bytes do not back (see kMaxImageBytesPerFileByte).
[[nodiscard]] IcoReading ReadIco(ByteView file, std::wstring_view fileName);

/// The image count, or kBadIcoHeader.
[[nodiscard]] uint32_t ReadIcoHeader(ByteView file);

/// What became of writing an icon.
enum class IcoBuild {
    Done,
    TooManyImages, ///< more than the header can count
    BadImage       ///< null, shorter than its header, or the file would pass 4 GiB
};

/// The whole file of the images in their order; the bytes are only set when it is done.
[[nodiscard]] IcoBuild BuildIco(const std::vector<const ICONIMAGE*>& images, std::string& file);

/// Where image number index lies in a file of these images, null ones counting as empty. An index
/// past the end gives the file's length; an offset past 32 bits gives the largest number.
[[nodiscard]] uint32_t ImageOffset(const std::vector<const ICONIMAGE*>& images, uint32_t index);

} // namespace encap
