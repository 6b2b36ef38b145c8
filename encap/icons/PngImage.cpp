#include "encap/icons/PngImage.h"

#include <algorithm>
#include <array>
#include <memory>

#include <png.h>

namespace encap {
namespace {

constexpr std::array<unsigned char, 8> kSignature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr std::array<unsigned char, 8> kHeaderChunk{0, 0, 0, 13, 'I', 'H', 'D', 'R'};
constexpr std::size_t kHeaderEnd = kSignature.size() + kHeaderChunk.size() + 13;

uint32_t ReadBigEndian(const unsigned char* at)
{
    return static_cast<uint32_t>(at[0]) << 24 | static_cast<uint32_t>(at[1]) << 16 |
           static_cast<uint32_t>(at[2]) << 8 | at[3];
}

uint32_t ChannelsOf(uint32_t colourType)
{
    switch (colourType) {
    case 2: return 3;
    case 4: return 2;
    case 6: return 4;
    default: return 1;
    }
}

struct PngImageRelease {
    void operator()(png_image* image) const { png_image_free(image); }
};

} // namespace

bool IsPng(ByteView bytes)
{
    return bytes.size() >= kSignature.size() &&
           std::equal(kSignature.begin(), kSignature.end(), bytes.begin());
}

std::optional<PngHeader> ReadPngHeader(ByteView bytes)
{
    if (!IsPng(bytes) || bytes.size() < kHeaderEnd ||
        !std::equal(kHeaderChunk.begin(), kHeaderChunk.end(), bytes.begin() + kSignature.size())) {
        return std::nullopt;
    }
    const unsigned char* fields = bytes.data() + kSignature.size() + kHeaderChunk.size();
    PngHeader header;
    header.width = ReadBigEndian(fields);
    header.height = ReadBigEndian(fields + 4);
    header.bitsPerPixel = fields[8] * ChannelsOf(fields[9]);
    constexpr uint32_t kMaxSide = 0x7FFFFFFF;
    const auto [least, most] = std::minmax(header.width, header.height);
    return least >= 1 && most <= kMaxSide ? std::optional(header) : std::nullopt;
}

std::optional<PixelGrid> DecodePng(ByteView bytes, uint64_t maxPixels)
{
    const std::optional<PngHeader> header = ReadPngHeader(bytes);
    if (!header || uint64_t{header->width} * header->height > maxPixels) {
        return std::nullopt;
    }
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    const std::unique_ptr<png_image, PngImageRelease> release(&image);
    if (png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()) == 0) {
        return std::nullopt;
    }
    image.format = PNG_FORMAT_BGRA;
    PixelGrid grid{image.width, image.height, {}};
    std::vector<unsigned char> decoded(PNG_IMAGE_SIZE(image));
    if (png_image_finish_read(&image, nullptr, decoded.data(), 0, nullptr) == 0) {
        return std::nullopt;
    }
    grid.pixels.reserve(decoded.size() / 4);
    for (std::size_t at = 0; at < decoded.size(); at += 4) {
        grid.pixels.push_back(ReadU32(decoded.data() + at));
    }
    return grid;
}

std::vector<unsigned char> EncodePng(const PixelGrid& grid)
{
    std::vector<unsigned char> raw(grid.pixels.size() * 4);
    for (std::size_t index = 0; index < grid.pixels.size(); ++index) {
        WriteU32(raw.data() + index * 4, grid.pixels[index]);
    }
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = grid.width;
    image.height = grid.height;
    image.format = PNG_FORMAT_BGRA;
    const std::unique_ptr<png_image, PngImageRelease> release(&image);
    png_alloc_size_t size = 0;
    if (png_image_write_to_memory(&image, nullptr, &size, 0, raw.data(), 0, nullptr) == 0) {
        return {};
    }
    std::vector<unsigned char> png(size);
    if (png_image_write_to_memory(&image, png.data(), &size, 0, raw.data(), 0, nullptr) == 0) {
        return {};
    }
    png.resize(size);
    return png;
}

} // namespace encap
