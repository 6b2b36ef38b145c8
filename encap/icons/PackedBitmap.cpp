#include "encap/icons/PackedBitmap.h"

#include <algorithm>
#include <bit>

namespace encap {
namespace {

constexpr uint32_t kMaskBytes = 12;

uint64_t HeaderBytes(const BitmapHeader& header)
{
    return std::max(header.size, kBitmapHeaderBytes);
}

// Later, longer headers hold the masks themselves, at the same place.
uint64_t MaskBytesBehind(const BitmapHeader& header)
{
    const bool behind = header.compression == kCompressionMasks;
    return behind && HeaderBytes(header) == kBitmapHeaderBytes ? kMaskBytes : 0;
}

} // namespace

BitmapHeader ReadBitmapHeader(const unsigned char* at)
{
    BitmapHeader header;
    header.size = ReadU32(at);
    header.width = static_cast<int32_t>(ReadU32(at + 4));
    header.height = static_cast<int32_t>(ReadU32(at + 8));
    header.planes = ReadU16(at + 12);
    header.bitCount = ReadU16(at + 14);
    header.compression = ReadU32(at + 16);
    header.imageBytes = ReadU32(at + 20);
    header.xPixelsPerMeter = static_cast<int32_t>(ReadU32(at + 24));
    header.yPixelsPerMeter = static_cast<int32_t>(ReadU32(at + 28));
    header.coloursUsed = ReadU32(at + 32);
    header.coloursImportant = ReadU32(at + 36);
    return header;
}

void WriteBitmapHeader(unsigned char* at, const BitmapHeader& header)
{
    WriteU32(at, header.size);
    WriteU32(at + 4, static_cast<uint32_t>(header.width));
    WriteU32(at + 8, static_cast<uint32_t>(header.height));
    WriteU16(at + 12, header.planes);
    WriteU16(at + 14, header.bitCount);
    WriteU32(at + 16, header.compression);
    WriteU32(at + 20, header.imageBytes);
    WriteU32(at + 24, static_cast<uint32_t>(header.xPixelsPerMeter));
    WriteU32(at + 28, static_cast<uint32_t>(header.yPixelsPerMeter));
    WriteU32(at + 32, header.coloursUsed);
    WriteU32(at + 36, header.coloursImportant);
}

uint32_t RowCount(int32_t height)
{
    const auto bits = static_cast<uint32_t>(height);
    return height < 0 ? 0U - bits : bits;
}

uint64_t BytesPerRow(uint32_t width, uint32_t bitsPerPixel)
{
    return (uint64_t{width} * bitsPerPixel + 31) / 32 * 4;
}

uint32_t PaletteEntries(const BitmapHeader& header)
{
    const bool hasTable = header.bitCount >= 1 && header.bitCount <= 8;
    const uint32_t most = hasTable ? 1U << header.bitCount : 256U;
    if (header.coloursUsed == 0) {
        return hasTable ? most : 0;
    }
    return std::min(header.coloursUsed, most);
}

uint64_t RowsOffset(const BitmapHeader& header)
{
    const uint64_t table = uint64_t{PaletteEntries(header)} * kPaletteEntryBytes;
    return HeaderBytes(header) + MaskBytesBehind(header) + table;
}

bool IsBitmapDepth(uint32_t bitsPerPixel)
{
    constexpr std::array<uint32_t, 6> kDepths{1, 4, 8, 16, 24, 32};
    return std::find(kDepths.begin(), kDepths.end(), bitsPerPixel) != kDepths.end();
}

std::optional<PackedBitmap> PackedBitmap::Open(ByteView bytes, Rows rows)
{
    if (bytes.size() < kBitmapHeaderBytes) {
        return std::nullopt;
    }
    PackedBitmap bitmap;
    bitmap.m_bytes = bytes;
    bitmap.m_header = ReadBitmapHeader(bytes.data());
    const BitmapHeader& header = bitmap.m_header;
    const bool hasMasks = header.compression == kCompressionMasks;
    const bool mayHaveMasks = header.bitCount == 16 || header.bitCount == 32;
    if (header.width <= 0 || !IsBitmapDepth(header.bitCount) ||
        (header.compression != kCompressionNone && !(hasMasks && mayHaveMasks))) {
        return std::nullopt;
    }
    bitmap.m_width = static_cast<uint32_t>(header.width);
    bitmap.m_height = RowCount(header.height) / (rows == Rows::ColourHalf ? 2 : 1);
    bitmap.m_bytesPerRow = BytesPerRow(bitmap.m_width, header.bitCount);
    bitmap.m_rowsOffset = RowsOffset(header);
    bitmap.m_paletteEntries = PaletteEntries(header);
    bitmap.m_paletteOffset = HeaderBytes(header) + MaskBytesBehind(header);
    const uint64_t rowBytes = bitmap.m_bytesPerRow * bitmap.m_height;
    if (bitmap.m_height == 0 || !Holds(bytes, bitmap.m_rowsOffset, rowBytes)) {
        return std::nullopt;
    }
    bitmap.SetChannels();
    return bitmap;
}

void PackedBitmap::SetChannels()
{
    std::array<uint32_t, 4> masks{0x000000FF, 0x0000FF00, 0x00FF0000, 0};
    if (m_header.bitCount == 16) {
        masks = {0x001F, 0x03E0, 0x7C00, 0};
    }
    const bool hasMasks = m_header.compression == kCompressionMasks;
    if (hasMasks && m_rowsOffset >= kBitmapHeaderBytes + kMaskBytes) {
        const unsigned char* stored = m_bytes.data() + kBitmapHeaderBytes;
        masks = {ReadU32(stored + 8), ReadU32(stored + 4), ReadU32(stored), 0};
    }
    if (m_header.bitCount == 32) {
        masks[3] = ~(masks[0] | masks[1] | masks[2]);
    }
    for (std::size_t index = 0; index < masks.size(); ++index) {
        const int shift = masks[index] != 0 ? std::countr_zero(masks[index]) : 0;
        m_channels[index] = {masks[index], static_cast<uint32_t>(shift)};
    }
}

uint32_t PackedBitmap::Channel::Value(uint32_t pixel) const
{
    const uint64_t most = mask >> shift;
    if (most == 0) {
        return 0;
    }
    return static_cast<uint32_t>((uint64_t{(pixel & mask) >> shift} * 255 + most / 2) / most);
}

uint64_t PackedBitmap::StoredRow(uint32_t y) const
{
    return m_header.height < 0 ? y : m_height - 1 - y;
}

const unsigned char* PackedBitmap::RowAt(uint32_t y) const
{
    return m_bytes.data() + m_rowsOffset + StoredRow(y) * m_bytesPerRow;
}

uint32_t PackedBitmap::PaletteColour(uint32_t index) const
{
    if (index >= m_paletteEntries) {
        return 0;
    }
    const unsigned char* entry = m_bytes.data() + m_paletteOffset + uint64_t{index} * 4;
    return ReadU32(entry) & 0x00FFFFFF;
}

uint32_t PackedBitmap::IndexAt(uint32_t x, uint32_t y) const
{
    const uint32_t bits = m_header.bitCount;
    const uint64_t firstBit = uint64_t{x} * bits;
    const uint32_t byte = RowAt(y)[firstBit / 8];
    const auto shift = static_cast<uint32_t>(8 - bits - firstBit % 8);
    return (byte >> shift) & ((1U << bits) - 1);
}

uint32_t PackedBitmap::ColourAt(uint32_t x, uint32_t y) const
{
    if (m_header.bitCount <= 8) {
        return PaletteColour(IndexAt(x, y));
    }
    const unsigned char* at = RowAt(y) + uint64_t{x} * (m_header.bitCount / 8U);
    if (m_header.bitCount == 24) {
        return ReadU16(at) | static_cast<uint32_t>(at[2]) << 16;
    }
    const uint32_t pixel = m_header.bitCount == 16 ? ReadU16(at) : ReadU32(at);
    uint32_t colour = 0;
    for (uint32_t index = 0; index < m_channels.size(); ++index) {
        colour |= m_channels[index].Value(pixel) << (8 * index);
    }
    return colour;
}

bool PackedBitmap::MaskAt(uint32_t x, uint32_t y) const
{
    const uint64_t offset = RowsEnd() + StoredRow(y) * BytesPerRow(m_width, 1) + x / 8;
    return offset < m_bytes.size() && (m_bytes[offset] >> (7 - x % 8) & 1) != 0;
}

} // namespace encap
