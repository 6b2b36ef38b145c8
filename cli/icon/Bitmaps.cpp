#include "cli/icon/Bitmaps.h"

#include "encap/icons/Dib.h"
#include "encap/icons/Icons.h"

#include <algorithm>

namespace encap::cli {
namespace {

constexpr std::size_t kFileHeaderBytes = 14;
constexpr std::size_t kInfoHeaderBytes = 40;
constexpr uint32_t kBlack = 0x000000;
constexpr uint32_t kWhite = 0xFFFFFF;

uint32_t NumberAt(const unsigned char* bytes, std::size_t count)
{
    uint32_t number = 0;
    for (std::size_t index = count; index-- > 0;) {
        number = number << 8 | bytes[index];
    }
    return number;
}

const unsigned char* AsBytes(std::string_view text)
{
    return reinterpret_cast<const unsigned char*>(text.data());
}

/// Whether the colour table of a bitmap of 1 bit has other colours than black and white. REQUIRES:
/// the bitmap holds its table.
bool HasOwnColours(const std::vector<unsigned char>& dib)
{
    const std::size_t rows = CDib::BitsOffset(dib.data());
    for (std::size_t at = rows - CDib::PaletteSize(dib.data()); at < rows; at += 4) {
        const uint32_t colour = NumberAt(dib.data() + at, 3);
        if (colour != kBlack && colour != kWhite) {
            return true;
        }
    }
    return false;
}

} // namespace

bool HasLongBmpHeader(std::string_view file)
{
    return file.size() >= kFileHeaderBytes + kInfoHeaderBytes && file.starts_with("BM") &&
           NumberAt(AsBytes(file) + kFileHeaderBytes, 4) > kInfoHeaderBytes;
}

std::vector<unsigned char> PackedBitmapOf(std::string_view file)
{
    if (!HasLongBmpHeader(file)) {
        return CDib::FromFileBytes(AsBytes(file), file.size());
    }
    // A packed bitmap has its rows directly behind the table, a file may leave a gap.
    const std::string_view dib = file.substr(kFileHeaderBytes);
    const uint64_t headBytes = CDib::BitsOffset(AsBytes(dib));
    const uint32_t stated = NumberAt(AsBytes(file) + 10, 4);
    const uint64_t rows = stated != 0 ? stated : kFileHeaderBytes + headBytes;
    if (headBytes > dib.size() || rows > file.size()) {
        return {};
    }
    std::vector<unsigned char> packed(dib.begin(),
                                      dib.begin() + static_cast<std::ptrdiff_t>(headBytes));
    packed.insert(packed.end(), file.begin() + static_cast<std::ptrdiff_t>(rows), file.end());
    return packed;
}

std::optional<OwnedImage> ImageOfBitmap(const std::vector<unsigned char>& dib)
{
    if (dib.size() < kInfoHeaderBytes || CDib::BitsOffset(dib.data()) > dib.size()) {
        return std::nullopt;
    }
    const uint32_t width = NumberAt(dib.data() + 4, 4);
    const uint32_t height = NumberAt(dib.data() + 8, 4);
    const uint32_t bitsPerPixel = NumberAt(dib.data() + 14, 2);
    constexpr uint32_t kSign = 0x80000000;
    const bool isTopDown = (height & kSign) != 0;
    const bool hasMasks = NumberAt(dib.data() + 16, 4) != 0;
    const bool losesColours =
        (bitsPerPixel == 1 && HasOwnColours(dib)) || (bitsPerPixel == 16 && hasMasks);
    OwnedImage image(width, isTopDown ? 0U - height : height, losesColours ? 24 : bitsPerPixel);
    if (CIcons().DIBToIconImage(&image.Image(), dib.data(), dib.size(), 0) == 0) {
        return std::nullopt;
    }
    return image;
}

} // namespace encap::cli
