#include "encap/icons/IconImage.h"

#include "encap/icons/OwnedIcon.h"
#include "encap/icons/PngImage.h"

#include <algorithm>
#include <cstdlib>

namespace encap {
namespace {

constexpr uint32_t kAlpha = 0xFF000000;

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
    BitmapHeader header = ReadBitmapHeader(bits.data());
    header.height *= 2;
    WriteBitmapHeader(bits.data(), header);
    bits.resize(bits.size() + BytesPerRow(format.width, 1) * format.height);
    unsigned char* const oldBits = image->bits;
    if (!CopyImageBits(*image, bits)) {
        return false;
    }
    std::free(oldBits);
    return AdjustIconImagePointers(image);
}

} // namespace encap
