#include "encap/icons/PixelConversion.h"

#include "encap/icons/Palettes.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace encap {
namespace {

constexpr uint64_t kMaxPackedBytes = std::numeric_limits<int32_t>::max();
constexpr uint32_t kOpaque = 0xFF000000;

/// The bitmap's colours without its alpha, so that averages weigh all pixels alike.
class OpaquePixels : public PixelSource {
public:
    explicit OpaquePixels(const PackedBitmap& bitmap) : m_bitmap(bitmap) {}
    [[nodiscard]] uint32_t Width() const override { return m_bitmap.Width(); }
    [[nodiscard]] uint32_t Height() const override { return m_bitmap.Height(); }
    [[nodiscard]] uint32_t At(uint32_t x, uint32_t y) const override
    {
        return m_bitmap.ColourAt(x, y) | kOpaque;
    }

private:
    const PackedBitmap& m_bitmap;
};

/// Sums of one target pixel; a weight counts parts of a source pixel.
struct AreaSum {
    std::array<uint64_t, 3> colours{}; // blue, green, red, weighted by alpha
    uint64_t alpha = 0;
    uint64_t weight = 0;

    void Add(uint32_t pixel, uint64_t pixelWeight)
    {
        const uint64_t pixelAlpha = (pixel >> 24) * pixelWeight;
        for (std::size_t index = 0; index < colours.size(); ++index) {
            colours[index] += (pixel >> (8 * index) & 0xFF) * pixelAlpha;
        }
        alpha += pixelAlpha;
        weight += pixelWeight;
    }

    [[nodiscard]] uint32_t Average() const
    {
        if (alpha == 0) {
            return 0;
        }
        auto pixel = static_cast<uint32_t>((alpha + weight / 2) / weight) << 24;
        for (std::size_t index = 0; index < colours.size(); ++index) {
            const uint64_t colour = (colours[index] + alpha / 2) / alpha;
            pixel |= static_cast<uint32_t>(colour) << (8 * index);
        }
        return pixel;
    }
};

/// The source pixels that target pixel number `at` of `targets` covers on one axis. Lengths are
/// counted in units of which a source pixel has `targets` and a target pixel `sources`.
class Coverage {
public:
    Coverage(uint32_t at, uint32_t sources, uint32_t targets)
        : m_from(uint64_t{at} * sources), m_to(m_from + sources), m_unit(targets)
    {
    }

    [[nodiscard]] uint32_t First() const { return static_cast<uint32_t>(m_from / m_unit); }
    [[nodiscard]] uint32_t End() const
    {
        return static_cast<uint32_t>((m_to + m_unit - 1) / m_unit);
    }
    [[nodiscard]] uint64_t Weight(uint32_t index) const
    {
        const uint64_t begin = std::max(m_from, index * m_unit);
        return std::min(m_to, (index + uint64_t{1}) * m_unit) - begin;
    }

private:
    uint64_t m_from;
    uint64_t m_to;
    uint64_t m_unit;
};

/// A packed bitmap while it is filled.
class BitmapWriter {
public:
    BitmapWriter(const BitmapFormat& format, std::span<const uint32_t> palette)
        : m_format(format), m_palette(palette),
          m_bytesPerRow(BytesPerRow(format.width, format.bitsPerPixel)),
          m_rowsOffset(kBitmapHeaderBytes + palette.size() * 4),
          m_bytes(m_rowsOffset + m_bytesPerRow * format.height)
    {
        BitmapHeader header;
        header.width = static_cast<int32_t>(format.width);
        header.height = static_cast<int32_t>(format.height);
        header.bitCount = static_cast<uint16_t>(format.bitsPerPixel);
        header.imageBytes = static_cast<uint32_t>(m_bytes.size() - m_rowsOffset);
        WriteBitmapHeader(m_bytes.data(), header);
        for (std::size_t index = 0; index < palette.size(); ++index) {
            WriteU32(m_bytes.data() + kBitmapHeaderBytes + index * 4, palette[index]);
        }
    }

    void SetIndex(uint32_t x, uint32_t y, uint32_t index)
    {
        const uint64_t firstBit = uint64_t{x} * m_format.bitsPerPixel;
        const auto shift = static_cast<uint32_t>(8 - m_format.bitsPerPixel - firstBit % 8);
        unsigned char& byte = Row(y)[firstBit / 8];
        byte = static_cast<unsigned char>(byte | index << shift);
    }

    void SetColour(uint32_t x, uint32_t y, uint32_t colour)
    {
        if (m_format.bitsPerPixel <= 8) {
            SetIndex(x, y, NearestColour(m_palette, colour));
            return;
        }
        unsigned char* at = Row(y) + uint64_t{x} * (m_format.bitsPerPixel / 8);
        if (m_format.bitsPerPixel == 16) {
            const uint32_t packed =
                (colour >> 9 & 0x7C00) | (colour >> 6 & 0x03E0) | (colour >> 3 & 0x001F);
            WriteU16(at, static_cast<uint16_t>(packed));
            return;
        }
        WriteU16(at, static_cast<uint16_t>(colour & 0xFFFF));
        at[2] = static_cast<unsigned char>(colour >> 16 & 0xFF);
        if (m_format.bitsPerPixel == 32) {
            at[3] = static_cast<unsigned char>(colour >> 24);
        }
    }

    [[nodiscard]] std::vector<unsigned char> Take() { return std::move(m_bytes); }

private:
    unsigned char* Row(uint32_t y)
    {
        return m_bytes.data() + m_rowsOffset + (m_format.height - 1 - y) * m_bytesPerRow;
    }

    BitmapFormat m_format;
    std::span<const uint32_t> m_palette;
    uint64_t m_bytesPerRow;
    uint64_t m_rowsOffset;
    std::vector<unsigned char> m_bytes;
};

bool Fits(const BitmapFormat& format)
{
    const uint64_t perRow = BytesPerRow(format.width, format.bitsPerPixel);
    const uint64_t header = kBitmapHeaderBytes + 256 * 4;
    return format.width != 0 && format.width <= kMaxPackedBytes && format.height != 0 &&
           IsBitmapDepth(format.bitsPerPixel) &&
           format.height <= (kMaxPackedBytes - header) / perRow;
}

bool KeepsPalette(const PackedBitmap& source, uint32_t bitsPerPixel)
{
    return source.BitsPerPixel() == bitsPerPixel && (bitsPerPixel == 4 || bitsPerPixel == 8);
}

void CopyTopLeft(const PackedBitmap& source, const BitmapFormat& format, BitmapWriter& target)
{
    const bool sameTable = KeepsPalette(source, format.bitsPerPixel);
    const uint32_t width = std::min(source.Width(), format.width);
    const uint32_t height = std::min(source.Height(), format.height);
    for (uint32_t y = 0; y < height; ++y) {
        for (uint32_t x = 0; x < width; ++x) {
            if (sameTable) {
                target.SetIndex(x, y, source.IndexAt(x, y));
            } else {
                target.SetColour(x, y, source.ColourAt(x, y) & ~kOpaque);
            }
        }
    }
}

void CopyStretched(const PackedBitmap& source, const BitmapFormat& format, BitmapWriter& target)
{
    const OpaquePixels pixels(source);
    for (uint32_t y = 0; y < format.height; ++y) {
        for (uint32_t x = 0; x < format.width; ++x) {
            const uint32_t colour = AverageArea(pixels, x, y, format.width, format.height);
            target.SetColour(x, y, colour & ~kOpaque);
        }
    }
}

uint32_t Distance(uint32_t one, uint32_t other)
{
    uint32_t sum = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const int difference =
            static_cast<int>(one >> shift & 0xFF) - static_cast<int>(other >> shift & 0xFF);
        sum += static_cast<uint32_t>(difference * difference);
    }
    return sum;
}

} // namespace

uint32_t AverageArea(const PixelSource& source, uint32_t x, uint32_t y, uint32_t width,
                     uint32_t height)
{
    const Coverage columns(x, source.Width(), width);
    const Coverage rows(y, source.Height(), height);
    AreaSum sum;
    for (uint32_t row = rows.First(); row < rows.End(); ++row) {
        const uint64_t rowWeight = rows.Weight(row);
        for (uint32_t column = columns.First(); column < columns.End(); ++column) {
            sum.Add(source.At(column, row), columns.Weight(column) * rowWeight);
        }
    }
    return sum.Average();
}

PixelGrid ScaleTo(const PixelSource& source, uint32_t width, uint32_t height)
{
    const bool same = source.Width() == width && source.Height() == height;
    PixelGrid grid{width, height, {}};
    grid.pixels.reserve(std::size_t{width} * height);
    for (uint32_t y = 0; y < height; ++y) {
        for (uint32_t x = 0; x < width; ++x) {
            grid.pixels.push_back(same ? source.At(x, y)
                                       : AverageArea(source, x, y, width, height));
        }
    }
    return grid;
}

uint32_t NearestColour(std::span<const uint32_t> palette, uint32_t colour)
{
    const auto isNearer = [colour](uint32_t left, uint32_t right) {
        return Distance(left, colour) < Distance(right, colour);
    };
    const auto nearest = std::min_element(palette.begin(), palette.end(), isNearer);
    return static_cast<uint32_t>(nearest - palette.begin());
}

std::vector<uint32_t> DefaultPalette(uint32_t bitsPerPixel)
{
    switch (bitsPerPixel) {
    case 1: return {kBlackAndWhite.begin(), kBlackAndWhite.end()};
    case 4: return {kDefaultPalette16.begin(), kDefaultPalette16.end()};
    case 8: return {kHalftonePalette256.begin(), kHalftonePalette256.end()};
    default: return {};
    }
}

std::vector<uint32_t> TargetPalette(const PackedBitmap& source, uint32_t bitsPerPixel)
{
    if (!KeepsPalette(source, bitsPerPixel)) {
        return DefaultPalette(bitsPerPixel);
    }
    std::vector<uint32_t> palette;
    for (uint32_t index = 0; index < 1U << bitsPerPixel; ++index) {
        palette.push_back(source.PaletteColour(index));
    }
    return palette;
}

std::vector<unsigned char> ConvertBitmap(const PackedBitmap& source, const BitmapFormat& format,
                                         bool stretch)
{
    if (!Fits(format)) {
        return {};
    }
    const std::vector<uint32_t> palette = TargetPalette(source, format.bitsPerPixel);
    BitmapWriter target(format, palette);
    const bool sameSize = source.Width() == format.width && source.Height() == format.height;
    if (stretch && !sameSize) {
        CopyStretched(source, format, target);
    } else {
        CopyTopLeft(source, format, target);
    }
    return target.Take();
}

std::vector<unsigned char> PackPixels(const PixelGrid& grid, uint32_t bitsPerPixel,
                                      std::span<const uint32_t> palette)
{
    const BitmapFormat format{grid.width, grid.height, bitsPerPixel};
    if (!Fits(format)) {
        return {};
    }
    BitmapWriter target(format, palette);
    for (uint32_t y = 0; y < grid.height; ++y) {
        for (uint32_t x = 0; x < grid.width; ++x) {
            target.SetColour(x, y, grid.pixels[std::size_t{y} * grid.width + x]);
        }
    }
    return target.Take();
}

} // namespace encap
