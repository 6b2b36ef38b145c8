#pragma once

#include "encap/icons/Bytes.h"
#include "encap/icons/IconRecords.h"

#include <string_view>

// Icon records under construction.
namespace encap {

using OwnedIcon = IconResourceOwner;

/// The images of a file may share bytes, so together they may be longer than the file, but not than
/// so many times its length: a small file must not ask for unlimited memory.
inline constexpr uint64_t kMaxImageBytesPerFileByte = 16;

/// A zeroed record of imageCount images without bits; null without memory.
[[nodiscard]] OwnedIcon MakeIconRecord(uint32_t imageCount);
/// The record's images as a plain pointer, since the declared array has one element only.
[[nodiscard]] ICONIMAGE* ImagesOf(ICONRESOURCE& icon);
/// Copies the name with its closing zero, cut to the room there is.
void CopyFileName(wchar_t (&target)[260], std::wstring_view name);
/// Gives the image a malloc copy of the bytes, without looking into them; false without memory.
[[nodiscard]] bool CopyImageBits(ICONIMAGE& image, ByteView bytes);

} // namespace encap
