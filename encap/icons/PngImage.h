#pragma once

#include "encap/icons/Bytes.h"
#include "encap/icons/PixelConversion.h"

#include <cstdint>
#include <optional>
#include <vector>

// Icon images that are stored as whole PNG images.
namespace encap {

/// What the first chunk of a PNG image says.
struct PngHeader {
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t bitsPerPixel = 0; ///< bit depth x channels (one channel for a palette)
};

/// Whether the bytes begin with the PNG signature.
[[nodiscard]] bool IsPng(ByteView bytes);
/// Nothing when the signature is not followed by a header chunk, or a size is zero or above 2^31-1.
[[nodiscard]] std::optional<PngHeader> ReadPngHeader(ByteView bytes);
/// The pixels as 8-bit sRGB with straight alpha; nothing when the image is damaged or has more than
/// maxPixels, which is seen before memory is asked for.
[[nodiscard]] std::optional<PixelGrid> DecodePng(ByteView bytes, uint64_t maxPixels);
/// A PNG image of the pixels at 8 bits a channel, alpha included (some readers of icons take no
/// other); empty without pixels.
[[nodiscard]] std::vector<unsigned char> EncodePng(const PixelGrid& grid);

} // namespace encap
