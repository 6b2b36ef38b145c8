#pragma once

#include "encap/icons/IconRecords.h"
#include "encap/icons/PixelConversion.h"

#include <cstdint>
#include <optional>
#include <vector>

// Single icon images: their record's fields, their pixels, and the bitmaps in and out of them.
namespace encap {

/// An icon handle has at most so many pixels (16 MiB); a larger bitmap image is scaled down to the
/// default size, a larger PNG image is not decoded.
inline constexpr uint64_t kMaxHandlePixels = uint64_t{4} << 20;
/// The handles of one file's images have at most so many pixels together.
inline constexpr uint64_t kMaxFilePixels = uint64_t{16} << 20;
/// Width and height of an icon where nothing else is asked for.
inline constexpr uint32_t kDefaultIconSide = 32;

/// The image's bytes; empty for null or without bits.
[[nodiscard]] ByteView BitsOf(const ICONIMAGE* image);
/// Sets width, height, colours and the three pointers from the bits. False, with the fields left,
/// when there is no image, its bits are shorter than a header, or a PNG image has no header chunk.
[[nodiscard]] bool AdjustIconImagePointers(ICONIMAGE* image);

/// The image with its transparency at its own size, or at the default size where it is larger than
/// a handle may be and not of 16 bits. Nothing when its rows are damaged or the limit is passed.
[[nodiscard]] std::optional<PixelGrid> HandlePixels(ByteView bits);

/// The image with its transparency at another size, averaged over areas; nothing when its rows are
/// damaged, or either side has no pixels or more than a handle may have.
[[nodiscard]] std::optional<PixelGrid> PixelsAt(ByteView bits, uint32_t width, uint32_t height);

/// The image as a whole PNG file: as it is, or made of its pixels and transparency. Empty where
/// PixelsAt gives nothing at the image's own size.
[[nodiscard]] std::vector<unsigned char> PngOf(ByteView bits);

/// The image as a packed bitmap: its bytes with the header's height halved, so that the colour rows
/// alone are the bitmap; the mask rows stay behind it. A PNG image gives its 32-bit pixels. Empty
/// when the rows are damaged.
[[nodiscard]] std::vector<unsigned char> PackedBitmapOf(ByteView bits);

/// Fills the image with the packed bitmap converted to its width, height and depth, all opaque. Old
/// bits are freed. False, with the image left as it was, when it is null, the bitmap is damaged or
/// the format impossible.
[[nodiscard]] bool SetImageFromBitmap(ICONIMAGE* image, ByteView dib, bool stretch);
/// Gives the image the bytes of a whole PNG file. False as above when they are none, or too long.
[[nodiscard]] bool SetImageFromPng(ICONIMAGE* image, ByteView png);
/// As SetImageFromBitmap for the bits of another image, with its transparency; its rows as they are
/// when they have the format.
[[nodiscard]] bool SetImageFromImage(ICONIMAGE* image, ByteView source);

} // namespace encap
