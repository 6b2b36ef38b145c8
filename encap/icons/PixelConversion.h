#pragma once

#include "encap/icons/PackedBitmap.h"

#include <cstdint>
#include <span>
#include <vector>

// Colour depths and sizes.
namespace encap {

/// Pixels to be read one by one, 0xAARRGGBB, from the top left.
class PixelSource {
public:
    virtual ~PixelSource() = default;
    [[nodiscard]] virtual uint32_t Width() const = 0;
    [[nodiscard]] virtual uint32_t Height() const = 0;
    /// REQUIRES: x < Width(), y < Height().
    [[nodiscard]] virtual uint32_t At(uint32_t x, uint32_t y) const = 0;
};

/// Decoded pixels, the topmost row first.
struct PixelGrid {
    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<uint32_t> pixels;
};

/// The pixel (x, y) of the source drawn at width x height: the average over the area of the source
/// that the pixel covers, borders counted by the part that is covered, colours weighted by alpha.
/// REQUIRES: x < width, y < height, the source has pixels.
[[nodiscard]] uint32_t AverageArea(const PixelSource& source, uint32_t x, uint32_t y,
                                   uint32_t width, uint32_t height);

/// All pixels of the source at that size; a plain copy when it is the source's own.
[[nodiscard]] PixelGrid ScaleTo(const PixelSource& source, uint32_t width, uint32_t height);

/// The first of the palette's colours at the least distance in red, green and blue (sum of
/// squares); alpha is ignored. REQUIRES: the palette is not empty.
[[nodiscard]] uint32_t NearestColour(std::span<const uint32_t> palette, uint32_t colour);

/// What a bitmap is converted to.
struct BitmapFormat {
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t bitsPerPixel = 0;
};

/// A new packed bitmap: header of 40 bytes, full colour table, rows from the lowest up. Empty when
/// the format has no pixels, an unknown depth or more than 2 GiB. The table is black and white at 1
/// bit; at 4 and 8 bits it is the source's at equal depth, else the default one. A source of
/// another size is averaged over areas when stretch is set; else its top left part is copied and
/// what it does not cover stays zero. The fourth byte of 32-bit pixels is zero.
[[nodiscard]] std::vector<unsigned char> ConvertBitmap(const PackedBitmap& source,
                                                       const BitmapFormat& format, bool stretch);

/// The colour table that the source gets at another depth: black and white at 1 bit; at 4 and 8
/// bits the source's at equal depth, else the default one; empty above 8 bits.
[[nodiscard]] std::vector<uint32_t> TargetPalette(const PackedBitmap& source,
                                                  uint32_t bitsPerPixel);
[[nodiscard]] std::vector<uint32_t> DefaultPalette(uint32_t bitsPerPixel);

/// The pixels as a packed bitmap in the nearest colours of the table, which is needed at 8 bits and
/// below; at 32 bits with alpha. Empty where ConvertBitmap is.
[[nodiscard]] std::vector<unsigned char> PackPixels(const PixelGrid& grid,
                                                    uint32_t bitsPerPixel = 32,
                                                    std::span<const uint32_t> palette = {});

} // namespace encap
