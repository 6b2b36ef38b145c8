#pragma once

#include "cli/icon/OwnedImage.h"

#include <optional>
#include <string_view>
#include <vector>

// Bitmaps of other programs, in files and on the clipboard.
namespace encap::cli {

/// The packed bitmap of a BMP file. Besides what CDib reads, the longer headers that programs write
/// for bitmaps with alpha are taken. Empty when it is none or damaged at its start.
[[nodiscard]] std::vector<unsigned char> PackedBitmapOf(std::string_view file);
/// Whether the bytes are a BMP file with such a longer header.
[[nodiscard]] bool HasLongBmpHeader(std::string_view file);

/// The bitmap as an image of its own size and depth, all opaque. One of 1 bit whose colours are not
/// black and white gets 24, since an image of 1 bit has no others, and so does one of 16 bits with
/// channels of its own. Nothing when the bitmap is damaged.
[[nodiscard]] std::optional<OwnedImage> ImageOfBitmap(const std::vector<unsigned char>& dib);

} // namespace encap::cli
