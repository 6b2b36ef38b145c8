#include "encap/icons/IcoFile.h"

#include "encap/icons/IconImage.h"
#include "encap/icons/PngImage.h"

#include <algorithm>
#include <limits>

namespace encap {
namespace {

constexpr uint16_t kIconType = 1;

IcoReading Failure(Error_ReadIconFromICOFile error)
{
    return {nullptr, error, MessageOf(error)};
}

/// One image of the directory: its entry read, its bytes copied, its pointers set. Takes the bytes
/// from the budget.
IcoReading ReadImage(ByteView file, uint32_t index, ICONIMAGE& image, uint64_t& budget)
{
    const unsigned char* entry = file.data() + kIcoHeaderBytes + uint64_t{index} * kIcoEntryBytes;
    const uint32_t byteCount = ReadU32(entry + 8);
    const uint32_t offset = ReadU32(entry + 12);
    if (!Holds(file, offset, byteCount)) {
        return Failure(ReadIcon_ImageShort);
    }
    if (byteCount > budget || !CopyImageBits(image, file.subspan(offset, byteCount))) {
        return {nullptr, ReadIcon_ImageUnreachable, IconMessage::ReallocateIcon};
    }
    budget -= byteCount;
    return AdjustIconImagePointers(&image) ? IcoReading() : Failure(ReadIcon_ImageMalformed);
}

/// Planes and bit count as the directory entry states them.
struct EntryDepth {
    uint16_t planes = 1;
    uint16_t bitCount = 0;
};

EntryDepth DepthOf(const ICONIMAGE& image)
{
    const ByteView bits = BitsOf(&image);
    if (const std::optional<PngHeader> png = ReadPngHeader(bits)) {
        return {1, static_cast<uint16_t>(png->bitsPerPixel)};
    }
    const BitmapHeader header = ReadBitmapHeader(bits.data());
    return {header.planes, header.bitCount};
}

void AppendEntry(std::string& file, const ICONIMAGE& image, uint32_t offset)
{
    const EntryDepth depth = DepthOf(image);
    const uint32_t bitsPerPixel = uint32_t{depth.planes} * depth.bitCount;
    unsigned char entry[kIcoEntryBytes]{};
    entry[0] = static_cast<unsigned char>(image.width & 0xFF);
    entry[1] = static_cast<unsigned char>(image.height & 0xFF);
    entry[2] = static_cast<unsigned char>(bitsPerPixel < 8 ? 1U << bitsPerPixel : 0);
    WriteU16(entry + 4, depth.planes);
    WriteU16(entry + 6, depth.bitCount);
    WriteU32(entry + 8, image.byteCount);
    WriteU32(entry + 12, offset);
    file.append(reinterpret_cast<const char*>(entry), sizeof entry);
}

uint64_t OffsetOf(const std::vector<const ICONIMAGE*>& images, uint64_t index)
{
    uint64_t offset = kIcoHeaderBytes + uint64_t{kIcoEntryBytes} * images.size();
    for (uint64_t before = 0; before < std::min<uint64_t>(index, images.size()); ++before) {
        offset += BitsOf(images[before]).size();
    }
    return offset;
}

bool IsWritable(const ICONIMAGE* image)
{
    return BitsOf(image).size() >= kBitmapHeaderBytes;
}

} // namespace

uint32_t ReadIcoHeader(ByteView file)
{
    const bool good = Holds(file, 0, kIcoHeaderBytes) && ReadU16(file.data()) == 0 &&
                      ReadU16(file.data() + 2) == kIconType;
    return good ? ReadU16(file.data() + 4) : kBadIcoHeader;
}

IcoReading ReadIco(ByteView file, std::wstring_view fileName)
{
    const uint32_t count = ReadIcoHeader(file);
    if (count == kBadIcoHeader) {
        return Failure(ReadIcon_BadHeader);
    }
    // The directory is measured first, so that a false count does not get memory.
    if (!Holds(file, kIcoHeaderBytes, uint64_t{count} * kIcoEntryBytes)) {
        return Failure(ReadIcon_DirectoryUnreadable);
    }
    OwnedIcon icon = MakeIconRecord(count);
    if (icon == nullptr) {
        return Failure(count <= 1 ? ReadIcon_AllocateRecordFailed : ReadIcon_EnlargeRecordFailed);
    }
    CopyFileName(icon->icoFileName, fileName);
    uint64_t budget = file.size() * kMaxImageBytesPerFileByte;
    for (uint32_t index = 0; index < count; ++index) {
        IcoReading reading = ReadImage(file, index, ImagesOf(*icon)[index], budget);
        if (reading.error != ReadIcon_Success) {
            return reading;
        }
    }
    return {std::move(icon), ReadIcon_Success, {}};
}

IcoBuild BuildIco(const std::vector<const ICONIMAGE*>& images, std::string& file)
{
    if (images.size() > std::numeric_limits<uint16_t>::max()) {
        return IcoBuild::TooManyImages;
    }
    const uint64_t length = OffsetOf(images, images.size());
    if (length > std::numeric_limits<uint32_t>::max() ||
        !std::all_of(images.begin(), images.end(), IsWritable)) {
        return IcoBuild::BadImage;
    }
    unsigned char header[kIcoHeaderBytes]{};
    WriteU16(header + 2, kIconType);
    WriteU16(header + 4, static_cast<uint16_t>(images.size()));
    file.assign(reinterpret_cast<const char*>(header), sizeof header);
    file.reserve(length);
    auto offset = static_cast<uint32_t>(OffsetOf(images, 0));
    for (const ICONIMAGE* image : images) {
        AppendEntry(file, *image, offset);
        offset += image->byteCount;
    }
    for (const ICONIMAGE* image : images) {
        file.append(reinterpret_cast<const char*>(image->bits), image->byteCount);
    }
    return IcoBuild::Done;
}

uint32_t ImageOffset(const std::vector<const ICONIMAGE*>& images, uint32_t index)
{
    constexpr uint64_t kMost = std::numeric_limits<uint32_t>::max();
    return static_cast<uint32_t>(std::min(OffsetOf(images, index), kMost));
}

} // namespace encap
