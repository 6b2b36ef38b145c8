#include "encap/icons/BmpFile.h"

#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

namespace encap {
namespace {

constexpr uint32_t kFileHeaderBytes = 14;
constexpr uint16_t kBitmapType = 0x4D42; // "BM"
constexpr uint64_t kMostOffset = 0x7FFFFFFF;

/// A lack of memory for a long file is to be shown, not thrown.
bool Resize(std::vector<unsigned char>& bytes, uint64_t count)
{
    try {
        bytes.resize(count);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    } catch (const std::length_error&) {
        return false;
    }
}

/// Where the file has its table and rows.
struct BmpParts {
    uint64_t tableBytes = 0;
    uint64_t rowsOffset = 0;
    uint64_t rowBytes = 0;
};

bool HasReadableRows(const BitmapHeader& header)
{
    return header.width > 0 && header.height != 0 &&
           header.height != std::numeric_limits<int32_t>::min() && IsBitmapDepth(header.bitCount) &&
           header.compression == kCompressionNone;
}

std::optional<IconMessage> FindParts(ByteView file, const BitmapHeader& header, BmpParts& parts)
{
    const uint64_t tableOffset = kFileHeaderBytes + kBitmapHeaderBytes;
    parts.tableBytes = RowsOffset(header) - kBitmapHeaderBytes;
    if (!Holds(file, tableOffset, parts.tableBytes)) {
        return IconMessage::ReadColourTable;
    }
    const uint32_t statedOffset = ReadU32(file.data() + 10);
    if (statedOffset > kMostOffset) {
        return IconMessage::LocateRows;
    }
    if (!HasReadableRows(header)) {
        return IconMessage::ReadRows;
    }
    parts.rowsOffset = statedOffset != 0 ? statedOffset : tableOffset + parts.tableBytes;
    parts.rowBytes =
        BytesPerRow(static_cast<uint32_t>(header.width), header.bitCount) * RowCount(header.height);
    return Holds(file, parts.rowsOffset, parts.rowBytes) ? std::nullopt
                                                         : std::optional(IconMessage::ReadRows);
}

} // namespace

std::optional<IconMessage> ReadBmp(ByteView file, std::vector<unsigned char>& dib)
{
    if (!Holds(file, 0, kFileHeaderBytes)) {
        return IconMessage::ReadBitmapHeader;
    }
    const bool isBitmap = ReadU16(file.data()) == kBitmapType && ReadU32(file.data() + 6) == 0;
    if (!isBitmap) {
        return IconMessage::UnknownBitmap;
    }
    std::vector<unsigned char> packed;
    if (!Resize(packed, kBitmapHeaderBytes)) {
        return IconMessage::ReallocateBitmap;
    }
    if (!Holds(file, kFileHeaderBytes, kBitmapHeaderBytes)) {
        return IconMessage::ReadBitmapInfo;
    }
    BitmapHeader header = encap::ReadBitmapHeader(file.data() + kFileHeaderBytes);
    if (header.size != kBitmapHeaderBytes) {
        return IconMessage::OldBitmapStyle;
    }
    BmpParts parts;
    if (const std::optional<IconMessage> message = FindParts(file, header, parts)) {
        return message;
    }
    if (!Resize(packed, kBitmapHeaderBytes + parts.tableBytes + parts.rowBytes)) {
        return IconMessage::AllocateBitmapRows;
    }
    header.coloursUsed = header.coloursUsed != 0 ? PaletteEntries(header) : 0;
    WriteBitmapHeader(packed.data(), header);
    const auto from = file.begin() + kFileHeaderBytes + kBitmapHeaderBytes;
    const auto rows = std::copy_n(from, parts.tableBytes, packed.begin() + kBitmapHeaderBytes);
    std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(parts.rowsOffset), parts.rowBytes, rows);
    dib = std::move(packed);
    return std::nullopt;
}

// A longer header is written as the common one: it holds the masks where that has them behind it.
std::string BuildBmp(ByteView dib)
{
    const std::optional<PackedBitmap> bitmap = PackedBitmap::Open(dib);
    if (!bitmap || bitmap->RowsEnd() > kMostOffset) {
        return {};
    }
    BitmapHeader header = bitmap->Header();
    const auto oldRows = static_cast<uint32_t>(RowsOffset(header));
    const auto rowBytes = static_cast<uint32_t>(bitmap->RowsEnd()) - oldRows;
    const uint32_t tableBytes = PaletteEntries(header) * kPaletteEntryBytes;
    header.size = kBitmapHeaderBytes;
    header.coloursUsed = header.coloursUsed != 0 ? PaletteEntries(header) : 0;
    const auto newRows = static_cast<uint32_t>(RowsOffset(header));
    const uint32_t maskBytes = newRows - tableBytes - kBitmapHeaderBytes;
    if (oldRows < newRows) {
        return {};
    }
    header.imageBytes = rowBytes;
    unsigned char start[kFileHeaderBytes + kBitmapHeaderBytes]{};
    WriteU16(start, kBitmapType);
    WriteU32(start + 2, kFileHeaderBytes + newRows + rowBytes);
    WriteU32(start + 10, kFileHeaderBytes + newRows);
    WriteBitmapHeader(start + kFileHeaderBytes, header);
    std::string file(reinterpret_cast<const char*>(start), sizeof start);
    const auto append = [&](uint32_t offset, uint32_t count) {
        file.append(reinterpret_cast<const char*>(dib.data()) + offset, count);
    };
    append(kBitmapHeaderBytes, maskBytes);
    append(oldRows - tableBytes, tableBytes + rowBytes);
    return file;
}

} // namespace encap
