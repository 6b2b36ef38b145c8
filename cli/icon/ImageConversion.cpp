#include "cli/icon/ImageConversion.h"

#include "cli/Options.h"

#include <algorithm>
#include <array>
#include <new>
#include <tuple>

namespace encap::cli {
namespace {

constexpr std::array<uint32_t, 6> kDepths{1, 4, 8, 16, 24, 32};
constexpr uint32_t kPngBits = 32;

OwnedImage CopyOf(const ICONIMAGE& image)
{
    OwnedImage copy;
    ICONIMAGE& made = copy.Image();
    made = image;
    made.bits = static_cast<unsigned char*>(std::malloc(image.byteCount));
    if (made.bits == nullptr) {
        throw std::bad_alloc();
    }
    std::copy_n(image.bits, image.byteCount, made.bits);
    made.header = static_cast<BITMAPINFOHEADER*>(static_cast<void*>(made.bits));
    made.colourBits = made.bits + (image.colourBits - image.bits);
    made.maskBits = made.bits + (image.maskBits - image.bits);
    return copy;
}

} // namespace

void ImageDepth::Declare(Options& options)
{
    options.Choice(m_choice, "--bits", {"1", "4", "8", "16", "24", "32"},
                   "The new number of bits per pixel");
}

uint32_t ImageDepth::BitsFor(const ICONIMAGE& image) const
{
    if (m_choice >= 0) {
        return kDepths[static_cast<std::size_t>(m_choice)];
    }
    return IsPngImage(image) ? kPngBits : image.colours;
}

const ICONIMAGE& BestFor(const std::vector<ICONIMAGE*>& images, const ImageSize& size)
{
    const auto rank = [&size](const ICONIMAGE* image) {
        const bool isSmaller = image->width < size.width || image->height < size.height;
        const auto pixels = static_cast<int64_t>(PixelCount(*image));
        return std::tuple(isSmaller, isSmaller ? -pixels : pixels,
                          -static_cast<int64_t>(image->colours));
    };
    return **std::min_element(images.begin(), images.end(),
                              [&rank](const ICONIMAGE* left, const ICONIMAGE* right) {
                                  return rank(left) < rank(right);
                              });
}

OwnedImage Converted(const ICONIMAGE& image, const ImageSize& size, uint32_t bitsPerPixel,
                     const CString& path)
{
    const uint32_t bits = IsPngImage(image) ? kPngBits : image.colours;
    if (SizeOf(image) == size && bits == bitsPerPixel) {
        return CopyOf(image);
    }
    OwnedImage converted(size.width, size.height, bitsPerPixel);
    if (CIcons().ConvertIconImage(&converted.Image(), &image) == 0) {
        ThrowDamaged(image, path);
    }
    return converted;
}

OwnedImage Stored(const ICONIMAGE& image, bool asPng, const CString& path)
{
    if (asPng == IsPngImage(image)) {
        return CopyOf(image);
    }
    OwnedImage stored(image.width, image.height, kPngBits);
    if (!asPng) {
        if (CIcons().ConvertIconImage(&stored.Image(), &image) == 0) {
            ThrowDamaged(image, path);
        }
        return stored;
    }
    const std::vector<unsigned char> png = CIcons().IconImageToPNG(&image);
    if (CIcons().IconImageFromPNG(&stored.Image(), png.data(), png.size()) == 0) {
        ThrowDamaged(image, path);
    }
    return stored;
}

} // namespace encap::cli
