#pragma once

#include "encap/icons/Messages.h"
#include "encap/icons/PackedBitmap.h"

#include <optional>
#include <string>
#include <vector>

// BMP files in memory. docs/formats/bmp.md describes the format.
namespace encap {

/// Reads the bytes of a BMP file into a packed bitmap: header of 40 bytes, colour table, rows. Its
/// count of colours is that of the table. On failure gives what is to be shown and leaves the
/// bitmap. Compressed rows, rows without a known depth or a positive width, and rows longer than
/// the file are all unreadable rows.
[[nodiscard]] std::optional<IconMessage> ReadBmp(ByteView file, std::vector<unsigned char>& dib);

/// The bytes of a BMP file of the packed bitmap, under a header of 40 bytes whatever the bitmap's
/// own is; what follows its rows is left out. Empty when the bitmap is damaged or too long for the
/// format.
[[nodiscard]] std::string BuildBmp(ByteView dib);

} // namespace encap
