#include "encap/icons/IconImage.h"

#include "encap/icons/OwnedIcon.h"
#include "encap/icons/PngImage.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <utility>

namespace encap {
namespace {

constexpr uint32_t kAlpha = 0xFF000000;
/// Where a mask is all the transparency there is, a pixel is seen or not.
constexpr uint32_t kLeastVisibleAlpha = 128;

/// The pixels of an icon image of rows: 32-bit pixels have their own alpha, unless it is zero all
/// over; all others are opaque where the mask's bit is not set.
class MaskedPixels : public PixelSource {
public:
    explicit MaskedPixels(const PackedBitmap& bitmap) : m_bitmap(bitmap), m_hasAlpha(FindAlpha()) {}
    [[nodiscard]] uint32_t Width() const override { return m_bitmap.Width(); }
    [[nodiscard]] uint32_t Height() const override { return m_bitmap.Height(); }
    [[nodiscard]] uint32_t At(uint32_t x, uint32_t y) const override
    {
        const uint32_t colour = m_bitmap.ColourAt(x, y);
        if (m_hasAlpha) {
            return colour;
        }
        return m_bitmap.MaskAt(x, y) ? colour & ~kAlpha : colour | kAlpha;
    }

private:
    [[nodiscard]] bool FindAlpha() const
    {
        if (m_bitmap.BitsPerPixel() != 32) {
            return false;
        }
        for (uint32_t y = 0; y < m_bitmap.Height(); ++y) {
            for (uint32_t x = 0; x < m_bitmap.Width(); ++x) {
                if ((m_bitmap.ColourAt(x, y) & kAlpha) != 0) {
                    return true;
                }
            }
        }
        return false;
    }

    const PackedBitmap& m_bitmap;
    bool m_hasAlpha;
};

/// Decoded pixels. Refers to them.
class GridPixels : public PixelSource {
public:
    explicit GridPixels(const PixelGrid& grid) : m_grid(grid) {}
    [[nodiscard]] uint32_t Width() const override { return m_grid.width; }
    [[nodiscard]] uint32_t Height() const override { return m_grid.height; }
    [[nodiscard]] uint32_t At(uint32_t x, uint32_t y) const override
    {
        return m_grid.pixels[std::size_t{y} * m_grid.width + x];
    }

private:
    const PixelGrid& m_grid;
};

BITMAPINFOHEADER* HeaderIn(unsigned char* bits)
{
    // malloc aligns the bits for every type, and the header is their first part.
    return reinterpret_cast<BITMAPINFOHEADER*>(static_cast<void*>(bits));
}

// Not every reader of icons takes 32-bit pixels whose alpha is zero all over for opaque ones.
void MakeOpaque(std::vector<unsigned char>& dib)
{
    const BitmapHeader header = ReadBitmapHeader(dib.data());
    if (header.bitCount != 32) {
        return;
    }
    for (uint64_t at = RowsOffset(header) + 3; at < dib.size(); at += 4) {
        dib[at] = 0xFF;
    }
}

/// The mask rows of the pixels, the lowest first: set where the alpha is below the least one.
std::vector<unsigned char> MaskRows(const PixelGrid& grid, uint32_t leastAlpha)
{
    const uint64_t perRow = BytesPerRow(grid.width, 1);
    std::vector<unsigned char> rows(perRow * grid.height);
    for (uint32_t y = 0; y < grid.height; ++y) {
        unsigned char* const row = rows.data() + (grid.height - 1 - y) * perRow;
        for (uint32_t x = 0; x < grid.width; ++x) {
            if (grid.pixels[std::size_t{y} * grid.width + x] >> 24 < leastAlpha) {
                row[x / 8] = static_cast<unsigned char>(row[x / 8] | 0x80 >> x % 8);
            }
        }
    }
    return rows;
}

/// Gives the image a copy of the bytes in place of its bits; false, with the old bits left, when
/// there is no memory. REQUIRES: the bytes are a whole image.
bool ReplaceBits(ICONIMAGE& image, ByteView bytes)
{
    ICONIMAGE made{};
    if (!CopyImageBits(made, bytes)) {
        return false;
    }
    std::free(std::exchange(image.bits, made.bits));
    image.byteCount = made.byteCount;
    return AdjustIconImagePointers(&image);
}

/// The same with the rows of a bitmap and their mask.
bool ReplaceRows(ICONIMAGE& image, std::vector<unsigned char> dib,
                 const std::vector<unsigned char>& mask)
{
    BitmapHeader header = ReadBitmapHeader(dib.data());
    header.height *= 2;
    WriteBitmapHeader(dib.data(), header);
    dib.insert(dib.end(), mask.begin(), mask.end());
    return ReplaceBits(image, dib);
}

bool HasFormat(const PackedBitmap& bitmap, const BitmapFormat& format)
{
    return bitmap.Width() == format.width && bitmap.Height() == format.height &&
           bitmap.BitsPerPixel() == format.bitsPerPixel;
}

bool AdjustPngPointers(ICONIMAGE& image)
{
    const std::optional<PngHeader> png = ReadPngHeader(BitsOf(&image));
    if (!png) {
        return false;
    }
    image.width = png->width;
    image.height = png->height;
    image.colours = png->bitsPerPixel;
    image.header = HeaderIn(image.bits);
    image.colourBits = image.bits + image.byteCount;
    image.maskBits = image.colourBits;
    return true;
}

} // namespace

ByteView BitsOf(const ICONIMAGE* image)
{
    if (image == nullptr || image->bits == nullptr) {
        return {};
    }
    return {image->bits, image->byteCount};
}

bool AdjustIconImagePointers(ICONIMAGE* image)
{
    const ByteView bits = BitsOf(image);
    if (bits.size() < kBitmapHeaderBytes) {
        return false;
    }
    if (IsPng(bits)) {
        return AdjustPngPointers(*image);
    }
    const BitmapHeader header = ReadBitmapHeader(bits.data());
    image->header = HeaderIn(image->bits);
    image->width = static_cast<uint32_t>(header.width);
    image->height = RowCount(header.height) / 2;
    image->colours = uint32_t{header.planes} * header.bitCount;
    const uint64_t end = bits.size();
    const uint64_t colourRows = std::min(RowsOffset(header), end);
    // Rows and their length are what the header claims: their product may pass 64 bits.
    const uint64_t perRow = BytesPerRow(image->width, image->colours);
    const uint64_t rest = end - colourRows;
    const bool rowsFit = perRow == 0 || image->height <= rest / perRow;
    image->colourBits = image->bits + colourRows;
    image->maskBits = image->bits + (rowsFit ? colourRows + image->height * perRow : end);
    return true;
}

std::optional<PixelGrid> HandlePixels(ByteView bits)
{
    if (IsPng(bits)) {
        return DecodePng(bits, kMaxHandlePixels);
    }
    const std::optional<PackedBitmap> bitmap =
        PackedBitmap::Open(bits, PackedBitmap::Rows::ColourHalf);
    if (!bitmap) {
        return std::nullopt;
    }
    const MaskedPixels pixels(*bitmap);
    if (uint64_t{bitmap->Width()} * bitmap->Height() <= kMaxHandlePixels) {
        return ScaleTo(pixels, bitmap->Width(), bitmap->Height());
    }
    if (bitmap->BitsPerPixel() == 16) {
        return std::nullopt;
    }
    return ScaleTo(pixels, kDefaultIconSide, kDefaultIconSide);
}

std::optional<PixelGrid> PixelsAt(ByteView bits, uint32_t width, uint32_t height)
{
    if (width == 0 || height == 0 || uint64_t{width} * height > kMaxHandlePixels) {
        return std::nullopt;
    }
    if (IsPng(bits)) {
        const std::optional<PixelGrid> grid = DecodePng(bits, kMaxHandlePixels);
        return grid ? std::optional(ScaleTo(GridPixels(*grid), width, height)) : std::nullopt;
    }
    const std::optional<PackedBitmap> bitmap =
        PackedBitmap::Open(bits, PackedBitmap::Rows::ColourHalf);
    if (!bitmap || uint64_t{bitmap->Width()} * bitmap->Height() > kMaxHandlePixels) {
        return std::nullopt;
    }
    return ScaleTo(MaskedPixels(*bitmap), width, height);
}

std::vector<unsigned char> PngOf(ByteView bits)
{
    if (IsPng(bits)) {
        return ReadPngHeader(bits) ? std::vector<unsigned char>(bits.begin(), bits.end())
                                   : std::vector<unsigned char>();
    }
    const std::optional<PackedBitmap> bitmap =
        PackedBitmap::Open(bits, PackedBitmap::Rows::ColourHalf);
    const std::optional<PixelGrid> grid =
        bitmap ? PixelsAt(bits, bitmap->Width(), bitmap->Height()) : std::nullopt;
    return grid ? EncodePng(*grid) : std::vector<unsigned char>();
}

std::vector<unsigned char> PackedBitmapOf(ByteView bits)
{
    if (IsPng(bits)) {
        const std::optional<PixelGrid> grid = DecodePng(bits, kMaxHandlePixels);
        return grid ? PackPixels(*grid) : std::vector<unsigned char>();
    }
    if (!PackedBitmap::Open(bits, PackedBitmap::Rows::ColourHalf)) {
        return {};
    }
    std::vector<unsigned char> dib(bits.begin(), bits.end());
    BitmapHeader header = ReadBitmapHeader(dib.data());
    header.height /= 2;
    WriteBitmapHeader(dib.data(), header);
    return dib;
}

bool SetImageFromBitmap(ICONIMAGE* image, ByteView dib, bool stretch)
{
    const std::optional<PackedBitmap> source = PackedBitmap::Open(dib);
    if (image == nullptr || !source) {
        return false;
    }
    const BitmapFormat format{image->width, image->height, image->colours};
    std::vector<unsigned char> bits = ConvertBitmap(*source, format, stretch);
    if (bits.empty()) {
        return false;
    }
    MakeOpaque(bits);
    const std::vector<unsigned char> mask(BytesPerRow(format.width, 1) * format.height);
    return ReplaceRows(*image, std::move(bits), mask);
}

bool SetImageFromPng(ICONIMAGE* image, ByteView png)
{
    const bool isWhole = ReadPngHeader(png) && png.size() >= kBitmapHeaderBytes &&
                         png.size() <= std::numeric_limits<uint32_t>::max();
    return image != nullptr && isWhole && ReplaceBits(*image, png);
}

bool SetImageFromImage(ICONIMAGE* image, ByteView source)
{
    if (image == nullptr || !IsBitmapDepth(image->colours)) {
        return false;
    }
    const BitmapFormat format{image->width, image->height, image->colours};
    const std::optional<PackedBitmap> rows =
        PackedBitmap::Open(source, PackedBitmap::Rows::ColourHalf);
    if (rows && HasFormat(*rows, format)) {
        return ReplaceBits(*image, source);
    }
    std::optional<PixelGrid> grid = PixelsAt(source, format.width, format.height);
    if (!grid) {
        return false;
    }
    const bool hasAlpha = format.bitsPerPixel == 32;
    const std::vector<unsigned char> mask = MaskRows(*grid, hasAlpha ? 1 : kLeastVisibleAlpha);
    for (uint32_t& pixel : grid->pixels) {
        // Under the mask a colour other than black would invert what is behind it.
        pixel = hasAlpha || pixel >> 24 >= kLeastVisibleAlpha ? pixel : 0;
    }
    const std::vector<uint32_t> palette =
        rows ? TargetPalette(*rows, format.bitsPerPixel) : DefaultPalette(format.bitsPerPixel);
    std::vector<unsigned char> dib = PackPixels(*grid, format.bitsPerPixel, palette);
    return !dib.empty() && ReplaceRows(*image, std::move(dib), mask);
}

} // namespace encap
