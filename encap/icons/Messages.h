#pragma once

#include "encap/icons/IconRecords.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

// Every message that the icon helpers show.
namespace encap {

enum class IconMessage : uint8_t {
    // reading an ICO file
    OpenIconFile,
    AllocateIcon,
    ReadIconHeader,
    ReallocateIcon,
    ReallocateIconFile,
    ReadIconFile,
    LocateImage,
    ReadImage,
    TransformImage,
    // writing one
    CreateIconFile,
    WriteIconHeader,
    // reading an executable; the two of double bytes are each followed by their English text
    LoadExecutableInDoubleBytes,
    LoadExecutable,
    AllocateExecutableIcon,
    TransformResourceInDoubleBytes,
    TransformResource,
    // reading a BMP file
    OpenBitmap,
    ReadBitmapHeader,
    UnknownBitmap,
    ReallocateBitmap,
    ReadBitmapInfo,
    OldBitmapStyle,
    AllocateBitmapRows,
    ReadColourTable,
    LocateRows,
    ReadRows,
    // writing one
    CreateBitmap,
    WriteBitmap,
};

/// The texts in the order of IconMessage. Three hold bytes of code page 936 widened one byte to a
/// character; hosts know the messages by exactly these texts.
inline constexpr std::array<std::wstring_view, 28> kIconMessages{
    L"Error when opening an icon file!",
    L"Error when allocating memory for an icon!",
    L"Error when reading header of an icon file!",
    L"Error when reallocating memory for an icon!",
    L"Error when reallocating memory for an icon file!",
    L"Error when reading an icon file!",
    L"Error when locating content of an icon!",
    L"Error when reading content of an icon!",
    L"Error when transforming inner format of an icon!",
    L"Error when creating a file!",
    L"Error when writing header of an icon file!",
    L"\u00D7\u00B0\u00C8\u00EB\u00CE\u00C4\u00BC\u00FE\u00CA\u00B1\u00B3\u00F6\u00B4\u00ED - "
    L"\u00C7\u00EB\u00D1\u00A1\u00D4\u00F1\u00D2\u00BB\u00B8\u00F6WIN32\u00B5\u00C4DLL"
    L"\u00BB\u00F2EXE\u00CE\u00C4\u00BC\u00FE!",
    L"Error when loading a file - Please select a WIN32 DLL or EXE file!",
    L"Error when allocating memory!",
    L"\u00D7\u00AA\u00BB\u00BB\u00B3\u00C9\u00CD\u00BC\u00B1\u00EA\u00C4\u00DA\u00B2\u00BF"
    L"\u00B8\u00F1\u00CA\u00BD\u00CA\u00B1\u00B3\u00F6\u00B4\u00ED!",
    L"Error when transforming to inner format of an icon!",
    L"Error when opening a bitmap file!",
    L"Error when reading header of a bitmap file!",
    L"Unknown bitmap format file!",
    L"Error when reallocating memory of a bitmap!",
    L"Error when reading a bitmap information header!",
    L"Not support a bitmap of OS/2 style!",
    L"Fail to reallocate memory a bitmap information header needs!",
    L"Error when reading bitmap color table!",
    L"Error when locating size of a bitmap file!",
    L"Error when reading a bitmap file!",
    L"Fail to create a bitmap file\u00A3\u00A1",
    L"Error when writing header of a bitmap file!",
};
static_assert(static_cast<std::size_t>(IconMessage::WriteBitmap) + 1 == kIconMessages.size());

/// The message of each code of the reporting read, from 1 on.
inline constexpr std::array<IconMessage, 9> kReadIconMessages{
    IconMessage::OpenIconFile,   IconMessage::AllocateIcon,       IconMessage::ReadIconHeader,
    IconMessage::ReallocateIcon, IconMessage::ReallocateIconFile, IconMessage::ReadIconFile,
    IconMessage::LocateImage,    IconMessage::ReadImage,          IconMessage::TransformImage,
};
static_assert(ReadIcon_ImageMalformed == kReadIconMessages.size());

/// REQUIRES: the code is not ReadIcon_Success.
[[nodiscard]] constexpr IconMessage MessageOf(Error_ReadIconFromICOFile code)
{
    return kReadIconMessages[static_cast<std::size_t>(code) - 1];
}

/// Whom a message box belongs to.
enum class MessageOwner { MainWindow, None };

/// Shows the message with the file as the caption.
void ShowIconMessage(std::wstring_view file, IconMessage message,
                     MessageOwner owner = MessageOwner::MainWindow);

} // namespace encap
