#pragma once

#include "encap/icons/Bytes.h"

#include <array>
#include <cstdint>
#include <optional>

// Packed bitmaps: header, channel masks or colour table, rows, one behind the other.
namespace encap {

inline constexpr uint32_t kBitmapHeaderBytes = 40;
inline constexpr uint32_t kPaletteEntryBytes = 4;
inline constexpr uint32_t kCompressionNone = 0;
inline constexpr uint32_t kCompressionMasks = 3;

/// The fields of a bitmap information header.
struct BitmapHeader {
    uint32_t size = kBitmapHeaderBytes;
    int32_t width = 0;
    int32_t height = 0;
    uint16_t planes = 1;
    uint16_t bitCount = 0;
    uint32_t compression = kCompressionNone;
    uint32_t imageBytes = 0;
    int32_t xPixelsPerMeter = 0;
    int32_t yPixelsPerMeter = 0;
    uint32_t coloursUsed = 0;
    uint32_t coloursImportant = 0;
};

/// REQUIRES (of both): 40 bytes at the address.
[[nodiscard]] BitmapHeader ReadBitmapHeader(const unsigned char* at);
void WriteBitmapHeader(unsigned char* at, const BitmapHeader& header);

/// The magnitude of a height, whose sign tells the order of the rows.
[[nodiscard]] uint32_t RowCount(int32_t height);
/// Bytes of one row: whole 32-bit words.
[[nodiscard]] uint64_t BytesPerRow(uint32_t width, uint32_t bitsPerPixel);
/// Entries of the colour table: as many as the header says, but never more than the depth can tell
/// apart (256 where the table is only a hint, above 8 bits).
[[nodiscard]] uint32_t PaletteEntries(const BitmapHeader& header);
/// Where the rows begin: behind the header (40 bytes at least, whatever it says), masks and table.
[[nodiscard]] uint64_t RowsOffset(const BitmapHeader& header);
/// 1, 4, 8, 16, 24 or 32.
[[nodiscard]] bool IsBitmapDepth(uint32_t bitsPerPixel);

/// A checked view of a packed bitmap, or of the colour part of an icon image. It refers to the
/// bytes that it was opened over; coordinates count from the top left.
class PackedBitmap {
public:
    /// How much of the header's height the colour rows take.
    enum class Rows {
        Whole,
        ColourHalf ///< half of it, as in an icon image: the mask takes the other half
    };

    /// Nothing when the bytes do not hold all rows, the width is not positive, there is no row, the
    /// depth is unknown, or the rows are compressed.
    static std::optional<PackedBitmap> Open(ByteView bytes, Rows rows = Rows::Whole);

    [[nodiscard]] uint32_t Width() const { return m_width; }
    [[nodiscard]] uint32_t Height() const { return m_height; }
    [[nodiscard]] uint32_t BitsPerPixel() const { return m_header.bitCount; }
    [[nodiscard]] const BitmapHeader& Header() const { return m_header; }
    /// The offset of the byte behind the colour rows.
    [[nodiscard]] uint64_t RowsEnd() const { return m_rowsOffset + m_bytesPerRow * m_height; }

    /// Entry of the colour table as 0x00RRGGBB; black behind its end.
    [[nodiscard]] uint32_t PaletteColour(uint32_t index) const;
    /// REQUIRES: 8 bits or less; x and y lie in the bitmap.
    [[nodiscard]] uint32_t IndexAt(uint32_t x, uint32_t y) const;
    /// 0xAARRGGBB; the alpha as stored at 32 bits, else 0. REQUIRES: x and y lie in the bitmap.
    [[nodiscard]] uint32_t ColourAt(uint32_t x, uint32_t y) const;
    /// The bit of the mask rows behind the colour rows; 0 where the bytes end before it.
    [[nodiscard]] bool MaskAt(uint32_t x, uint32_t y) const;

private:
    /// One channel of a 16- or 32-bit pixel.
    struct Channel {
        uint32_t mask = 0;
        uint32_t shift = 0;
        [[nodiscard]] uint32_t Value(uint32_t pixel) const;
    };

    PackedBitmap() = default;
    void SetChannels();
    [[nodiscard]] uint64_t StoredRow(uint32_t y) const;
    [[nodiscard]] const unsigned char* RowAt(uint32_t y) const;

    ByteView m_bytes;
    BitmapHeader m_header;
    uint32_t m_width = 0;
    uint32_t m_height = 0;
    uint64_t m_rowsOffset = 0;
    uint64_t m_bytesPerRow = 0;
    uint32_t m_paletteEntries = 0;
    uint64_t m_paletteOffset = 0;
    std::array<Channel, 4> m_channels; // blue, green, red, alpha
};

} // namespace encap
