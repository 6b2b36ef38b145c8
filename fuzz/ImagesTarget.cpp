#include "encap/icons/BmpFile.h"
#include "encap/icons/IcoFile.h"
#include "encap/icons/IconImage.h"
#include "encap/icons/PeResources.h"
#include "fuzz/Support.h"
#include "fuzz/Targets.h"

#include <cstdlib>

namespace encap::fuzz {
namespace {

// More images or pixels take longer, not other ways.
constexpr uint32_t kMostImages = 40;
constexpr uint32_t kSide = 20;

void UseBitmap(ByteView dib)
{
    const std::string file = BuildBmp(dib);
    std::vector<unsigned char> again;
    const bool hasMasks = dib.size() >= kBitmapHeaderBytes &&
                          encap::ReadBitmapHeader(dib.data()).compression == kCompressionMasks;
    Require(file.empty() || hasMasks || !ReadBmp(AsBytes(file), again),
            "a BMP file that was written is read");
    for (const uint32_t depth : {1U, 4U, 8U, 24U, 32U}) {
        ICONIMAGE image{};
        image.width = kSide;
        image.height = kSide;
        image.colours = depth;
        if (SetImageFromBitmap(&image, dib, depth != 4)) {
            Require(HandlePixels(BitsOf(&image)).has_value(), "a converted image can be shown");
        }
        std::free(image.bits);
    }
}

void UseImage(ByteView bits)
{
    if (const auto pixels = HandlePixels(bits)) {
        Require(pixels->pixels.size() == uint64_t{pixels->width} * pixels->height,
                "an image has the pixels that it says");
    }
    const std::vector<unsigned char> dib = PackedBitmapOf(bits);
    if (!dib.empty()) {
        UseBitmap(dib);
    }
}

void ReadAsIco(std::string_view input)
{
    const IcoReading reading = ReadIco(AsBytes(input), L"input.ico");
    if (reading.icon == nullptr) {
        Require(reading.error != ReadIcon_Success, "a failure has a code");
        return;
    }
    std::vector<const ICONIMAGE*> images;
    for (uint32_t i = 0; i < reading.icon->imageCount; ++i) {
        images.push_back(ImagesOf(*reading.icon) + i);
        if (i < kMostImages) {
            UseImage(BitsOf(images.back()));
        }
    }
    std::string file;
    Require(BuildIco(images, file) == IcoBuild::Done, "what was read can be written");
    const IcoReading again = ReadIco(AsBytes(file), L"again.ico");
    Require(again.icon != nullptr && again.icon->imageCount == images.size(),
            "an ICO file that was written is read");
}

void ReadAsExecutable(std::string_view input)
{
    const auto resources = PeResources::Open(AsBytes(input));
    if (!resources) {
        return;
    }
    for (const ResourceName& name :
         {ResourceName{1, L""}, ResourceName{0, L"MAINICON"}, ResourceName{7, L""}}) {
        const auto group = resources->Find(kIconGroupResourceType, name);
        const auto entries = group ? ReadIconGroup(*group) : std::nullopt;
        if (!entries) {
            continue;
        }
        static_cast<void>(BestIcon(*entries));
        for (std::size_t i = 0; i < entries->size() && i < kMostImages; ++i) {
            if (const auto bits =
                    resources->Find(kIconResourceType, {(*entries)[i].imageId, L""})) {
                UseImage(*bits);
            }
        }
    }
}

} // namespace

void RunImages(std::string_view input)
{
    if (input.starts_with("MZ")) {
        ReadAsExecutable(input);
    } else if (input.starts_with("BM")) {
        std::vector<unsigned char> dib;
        if (!ReadBmp(AsBytes(input), dib)) {
            UseBitmap(dib);
        }
    } else {
        ReadAsIco(input);
        UseBitmap(AsBytes(input));
        UseImage(AsBytes(input));
    }
}

} // namespace encap::fuzz
