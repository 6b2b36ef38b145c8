#include "IconTestSupport.h"
#include "Pictures.h"
#include "encap/icons/Dib.h"
#include "encap/icons/IconImage.h"
#include "encap/icons/Palettes.h"
#include "encap/icons/PngImage.h"
#include "encap/platform/Clipboard.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <tuple>

namespace {

using namespace encap;

const CIcons kIcons;

/// An image to be filled, with its bits.
struct TargetImage : ICONIMAGE {
    TargetImage(uint32_t w, uint32_t h, uint32_t bitsPerPixel) : ICONIMAGE{}
    {
        width = w;
        height = h;
        colours = bitsPerPixel;
    }
    ~TargetImage() { std::free(bits); }
    TargetImage(const TargetImage&) = delete;
    TargetImage& operator=(const TargetImage&) = delete;
};

std::vector<uint32_t> Palette(ByteView dib)
{
    std::vector<uint32_t> palette;
    const auto bitmap = PackedBitmap::Open(dib);
    for (uint32_t index = 0; bitmap && index < 1U << bitmap->BitsPerPixel(); ++index) {
        palette.push_back(bitmap->PaletteColour(index));
    }
    return palette;
}

std::vector<unsigned char> Bytes(const std::string& text)
{
    return {text.begin(), text.end()};
}

std::vector<unsigned char> Convert(const std::vector<unsigned char>& dib, uint32_t width,
                                   uint32_t height, uint32_t bits, bool stretch)
{
    return CDib::Convert(dib.data(), dib.size(), width, height, bits, stretch);
}

std::vector<uint32_t> Colours(ByteView dib)
{
    std::vector<uint32_t> colours;
    const auto bitmap = PackedBitmap::Open(dib);
    for (uint32_t y = 0; bitmap && y < bitmap->Height(); ++y) {
        for (uint32_t x = 0; x < bitmap->Width(); ++x) {
            colours.push_back(bitmap->ColourAt(x, y));
        }
    }
    return colours;
}

TEST(ConvertBitmap, ChoosesTheTableByBothDepths)
{
    const std::string fourBits =
        InfoHeader(2, 1, 4, 0, 3) + Le32(0x010203) + Le32(0x040506) + Le32(0xFF0000) + Le32(0x12);
    std::vector<uint32_t> ownTable(16, 0);
    ownTable[0] = 0x010203;
    ownTable[1] = 0x040506;
    ownTable[2] = 0xFF0000;
    const auto same = Convert(Bytes(fourBits), 2, 1, 4, false);
    EXPECT_EQ(Palette(same), ownTable);
    EXPECT_EQ(Colours(same), (std::vector<uint32_t>{0x040506, 0xFF0000}));
    const std::vector<uint32_t> black2{kBlackAndWhite.begin(), kBlackAndWhite.end()};
    EXPECT_EQ(Palette(Convert(Bytes(fourBits), 2, 1, 1, false)), black2);

    const auto ramp = CDib::ReadFile(Fixture("magick-ramp.bmp").c_str());
    EXPECT_EQ(Palette(Convert(ramp, 16, 16, 8, false)), Palette(ramp));
    EXPECT_EQ(Palette(Convert(ramp, 4, 4, 8, true)), Palette(ramp));
    const auto four = Convert(ramp, 16, 16, 4, false);
    EXPECT_EQ(Palette(four), std::vector<uint32_t>(kVga.begin(), kVga.end()));
    const auto halftone = Palette(Convert(PackPicture(Grad, 2, 2), 2, 2, 8, false));
    EXPECT_EQ(halftone[8], 0xC0DCC0U);
    EXPECT_EQ(halftone[19], 0xFFFFFFU);
    EXPECT_EQ(halftone[20 + 36 + 2 * 6 + 3], 0x336699U);
    EXPECT_EQ(halftone[235], 0xFFFFFFU);
    EXPECT_EQ(halftone[255], 0U);
}

TEST(ConvertBitmap, TakesTheNearestColour)
{
    const auto one = [](uint32_t colour) {
        return PackPicture([colour](uint32_t, uint32_t) { return colour; }, 1, 1);
    };
    const struct {
        uint32_t from, bits, to;
    } cases[]{
        {0x7F7F7F, 1, 0x000000},  {0x808080, 1, 0xFFFFFF},  {0xF01010, 4, 0xFF0000},
        {0xB0B0B0, 4, 0xC0C0C0},  {0x306898, 8, 0x336699},  {0xFFFFFF, 16, 0xFFFFFF},
        {0x070809, 16, 0x000808}, {0x123456, 24, 0x123456}, {0xAB123456, 32, 0x123456},
    };
    for (const auto& [from, bits, to] : cases) {
        EXPECT_EQ(Colours(Convert(one(from), 1, 1, bits, false)), std::vector<uint32_t>{to})
            << std::hex << from << " at " << bits;
    }
}

TEST(ConvertBitmap, StretchesByAreaOrCopiesTheTopLeft)
{
    const auto dib = PackPicture(
        [](uint32_t x, uint32_t y) { return x == 0 && y == 0 ? 0xFFFFFFU : x * 0x30U; }, 3, 2);
    EXPECT_EQ(Colours(Convert(dib, 2, 1, 24, false)), (std::vector<uint32_t>{0xFFFFFF, 0x30}));
    EXPECT_EQ(Colours(Convert(dib, 4, 1, 24, false)),
              (std::vector<uint32_t>{0xFFFFFF, 0x30, 0x60, 0}));
    // Each half covers one and a half columns: blue (2*255 + 0x30 * 2) / 6 and so on.
    EXPECT_EQ(Colours(Convert(dib, 2, 1, 24, true)), (std::vector<uint32_t>{0x555565, 0x000050}));
    EXPECT_EQ(Colours(Convert(dib, 3, 4, 24, true)),
              (std::vector<uint32_t>{0xFFFFFF, 0x30, 0x60, 0xFFFFFF, 0x30, 0x60, 0, 0x30, 0x60, 0,
                                     0x30, 0x60}));
}

TEST(ConvertBitmap, ReadsEveryDepthAndChannelMasks)
{
    const std::string masks565 = Le32(0xF800) + Le32(0x07E0) + Le32(0x001F);
    const std::string masksRgb = Le32(0x000000FF) + Le32(0x0000FF00) + Le32(0x00FF0000);
    const struct {
        std::string dib;
        uint32_t colour;
    } cases[]{
        {InfoHeader(1, 1, 16) + Le32(0x7C00 | 0x0200), 0xFF8400},
        {InfoHeader(1, 1, 16, 3) + masks565 + Le32(0xF800 | 0x0400), 0xFF8200},
        {InfoHeader(1, 1, 32, 3) + masksRgb + Le32(0x00112233), 0x332211},
        {InfoHeader(1, 1, 32, 3) + std::string(12, '\0') + Le32(0x00112233), 0},
        {InfoHeader(1, 1, 24, 0, 1) + Le32(0) + Le32(0x112233), 0x112233},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(Colours(Convert(Bytes(one.dib), 1, 1, 24, false)),
                  std::vector<uint32_t>{one.colour});
    }
}

TEST(ConvertBitmap, RefusesWhatIsNoBitmap)
{
    const auto dib = PackPicture(Grad, 2, 2);
    EXPECT_TRUE(Convert(dib, 0, 1, 24, false).empty());
    EXPECT_TRUE(Convert(dib, 1, 1, 2, false).empty());
    EXPECT_TRUE(Convert(dib, 0xFFFFFFFF, 0xFFFFFFFF, 32, true).empty());
    EXPECT_TRUE(CDib::Convert(dib.data(), dib.size() - 1, 1, 1, 24, false).empty());
    EXPECT_TRUE(CDib::Convert(nullptr, 100, 1, 1, 24, false).empty());
    const std::string runs = InfoHeader(1, 1, 8, 1, 1) + Le32(0) + Le32(0);
    EXPECT_TRUE(Convert(Bytes(runs), 1, 1, 24, false).empty());
}

TEST(IconImage, FromABitmapIsOpaqueAndKeepsItsOldBitsOnFailure)
{
    TargetImage image(4, 2, 32);
    const auto dib = PackPicture(Glass, 4, 2);
    ASSERT_NE(kIcons.DIBToIconImage(&image, dib.data(), 0), 0);
    EXPECT_EQ(image.byteCount, 40U + 4 * 4 * 2 + 4 * 2);
    EXPECT_EQ(image.maskBits - image.bits, 40 + 4 * 4 * 2);
    EXPECT_EQ(image.colourBits[3], 0xFF) << "opaque for readers that look at alpha only";
    ExpectPicture(HandlePointer(kIcons.MakeIconFromResource(&image)).get(), 4, 2, Opaque(Glass));

    const unsigned char* const bits = image.bits;
    EXPECT_EQ(kIcons.DIBToIconImage(&image, dib.data(), dib.size() - 1, 0), 0);
    EXPECT_EQ(kIcons.DIBToIconImage(&image, nullptr, 0), 0);
    EXPECT_EQ(kIcons.DIBToIconImage(nullptr, dib.data(), 0), 0);
    image.colours = 5;
    EXPECT_EQ(kIcons.DIBToIconImage(&image, dib.data(), 0), 0);
    EXPECT_EQ(image.bits, bits);
}

TEST(IconImage, GoesThroughBmpFiles)
{
    const TemporaryFolder folder;
    const CString file = folder.File(L"image.bmp");
    const IconPointer icon(kIcons.ReadIconFromICOFile(Fixture("icotool-depths.ico").c_str()));
    ASSERT_NE(icon, nullptr);
    // The fixture's transparent pixels are black.
    const Picture vga = [](uint32_t x, uint32_t y) { return x == 0 && y < 8 ? 0 : Vga(x, y); };
    const std::vector<Picture> pictures{Checks, vga, Ramp, Grad, Glass, Grad, Glass};
    const ICONIMAGE* images = icon->images;
    for (uint32_t index = 0; index < icon->imageCount; ++index) {
        SCOPED_TRACE(index);
        ASSERT_NE(kIcons.IconImageToBMPFile(file.c_str(), images + index), 0);
        TargetImage copy(images[index].width, images[index].height, 24);
        ASSERT_NE(kIcons.IconImageFromBMPFile(file.c_str(), &copy, 0), 0);
        ExpectPicture(HandlePointer(kIcons.MakeIconFromResource(&copy)).get(), copy.width,
                      copy.height, Opaque(pictures[index]));
    }
    EXPECT_EQ(kIcons.IconImageToBMPFile(file.c_str(), nullptr), 0);
}

/// An icon image of rows with the picture's transparency.
void Fill(TargetImage& image, const Picture& picture)
{
    const PixelGrid grid = Draw(picture, image.width, image.height);
    const std::vector<unsigned char> png = EncodePng(grid);
    TargetImage whole(0, 0, 0);
    ASSERT_NE(kIcons.IconImageFromPNG(&whole, png.data(), png.size()), 0);
    ASSERT_NE(kIcons.ConvertIconImage(&image, &whole), 0);
}

void ExpectImage(const ICONIMAGE& image, const Picture& picture)
{
    ExpectPicture(HandlePointer(kIcons.MakeIconFromResource(&image)).get(), image.width,
                  image.height, picture);
}

/// Full colour, of which a part is more or less transparent.
uint32_t Window(uint32_t x, uint32_t y)
{
    constexpr uint32_t kAlphas[]{0, 127, 128, 255};
    return (Vga(x, y) & 0xFFFFFF) | kAlphas[(x / 2 + y) % 4] << 24;
}

TEST(IconImage, ConvertedKeepsItsTransparency)
{
    const Picture seen = [](uint32_t x, uint32_t y) {
        return Window(x, y) >> 31 != 0 ? Window(x, y) | 0xFF000000 : 0;
    };
    TargetImage source(8, 6, 32);
    Fill(source, Window);
    ExpectImage(source, Window);
    for (const uint32_t bits : {4U, 8U, 24U}) {
        SCOPED_TRACE(bits);
        TargetImage target(8, 6, bits);
        ASSERT_NE(kIcons.ConvertIconImage(&target, &source), 0);
        ExpectImage(target, seen);
        EXPECT_EQ(target.colours, bits);
        // Under the mask all is black.
        EXPECT_EQ(Colours(PackedBitmapOf(BitsOf(&target)))[0], 0U);
    }
    // Nothing but transparent pixels stays so: readers take alpha that is zero all over for none.
    TargetImage clear(8, 6, 32);
    Fill(clear, [](uint32_t, uint32_t) { return 0U; });
    ExpectImage(clear, [](uint32_t, uint32_t) { return 0U; });
}

TEST(IconImage, StretchedWeighsColoursByAlpha)
{
    TargetImage source(4, 2, 32);
    Fill(source, [](uint32_t x, uint32_t) { return x % 2 == 0 ? 0xFF4080C0 : 0x00FFFFFF; });
    TargetImage half(2, 1, 32);
    ASSERT_NE(kIcons.ConvertIconImage(&half, &source), 0);
    ExpectImage(half, [](uint32_t, uint32_t) { return 0x804080C0; });
    TargetImage twice(8, 4, 24);
    ASSERT_NE(kIcons.ConvertIconImage(&twice, &source), 0);
    ExpectImage(twice, [](uint32_t x, uint32_t) { return x / 2 % 2 == 0 ? 0xFF4080C0 : 0; });
}

TEST(IconImage, OfTheSameFormatIsCopiedAndADamagedOneLeavesTheTarget)
{
    const IconPointer icon(kIcons.ReadIconFromICOFile(Fixture("icotool-depths.ico").c_str()));
    ASSERT_NE(icon, nullptr);
    const ICONIMAGE* images = icon->images;
    TargetImage same(16, 16, 4);
    ASSERT_NE(kIcons.ConvertIconImage(&same, images + 1), 0);
    EXPECT_TRUE(std::equal(same.bits, same.bits + same.byteCount, images[1].bits,
                           images[1].bits + images[1].byteCount));
    // At equal depth another size keeps the source's own colour table.
    TargetImage small(8, 8, 8);
    ASSERT_NE(kIcons.ConvertIconImage(&small, images + 2), 0);
    EXPECT_EQ(Palette(PackedBitmapOf(BitsOf(&small))), Palette(PackedBitmapOf(BitsOf(images + 2))));

    const unsigned char* const bits = same.bits;
    TargetImage none(16, 16, 4);
    ICONIMAGE cut = images[4];
    cut.byteCount = 1000;
    EXPECT_EQ(kIcons.ConvertIconImage(&same, &cut), 0);
    EXPECT_EQ(kIcons.ConvertIconImage(&same, &none), 0);
    EXPECT_EQ(kIcons.ConvertIconImage(&same, nullptr), 0);
    EXPECT_EQ(kIcons.ConvertIconImage(nullptr, images), 0);
    for (const auto& [width, height, depth] :
         {std::tuple(0U, 16U, 4U), {16U, 16U, 5U}, {4096U, 1025U, 4U}, {~0U, ~0U, 32U}}) {
        same.width = width;
        same.height = height;
        same.colours = depth;
        EXPECT_EQ(kIcons.ConvertIconImage(&same, images + 4), 0);
    }
    EXPECT_EQ(same.bits, bits);
}

TEST(IconImage, GoesThroughPngFiles)
{
    const IconPointer icon(kIcons.ReadIconFromICOFile(Fixture("icotool-depths.ico").c_str()));
    ASSERT_NE(icon, nullptr);
    const std::vector<Picture> pictures{Checks, Vga, Ramp, Grad, Glass, Grad, Glass};
    const ICONIMAGE* images = icon->images;
    TargetImage copy(0, 0, 0);
    for (uint32_t index = 0; index < icon->imageCount; ++index) {
        SCOPED_TRACE(index);
        const std::vector<unsigned char> png = kIcons.IconImageToPNG(images + index);
        ASSERT_NE(kIcons.IconImageFromPNG(&copy, png.data(), png.size()), 0);
        EXPECT_EQ(copy.width, images[index].width);
        EXPECT_EQ(copy.colours, 32U);
        ExpectImage(copy, pictures[index]);
    }
    const ByteView stored = BitsOf(images + 6);
    EXPECT_TRUE(std::equal(stored.begin(), stored.end(), copy.bits, copy.bits + copy.byteCount))
        << "a PNG image is kept byte for byte";
    EXPECT_EQ(kIcons.IconImageFromPNG(&copy, stored.data(), 32), 0);
    EXPECT_EQ(kIcons.IconImageFromPNG(&copy, images[0].bits, images[0].byteCount), 0);
    EXPECT_EQ(kIcons.IconImageFromPNG(&copy, nullptr, 100), 0);
    ExpectImage(copy, Glass);
    ICONIMAGE cut = images[4];
    cut.byteCount = 1000;
    EXPECT_TRUE(kIcons.IconImageToPNG(&cut).empty());
    EXPECT_TRUE(kIcons.IconImageToPNG(nullptr).empty());
}

TEST(IconHandle, ALargeImageIsScaledDownButNotAt16Bits)
{
    const auto handleOf = [](std::string bits) {
        ICONIMAGE image{};
        image.bits = reinterpret_cast<unsigned char*>(bits.data());
        image.byteCount = static_cast<uint32_t>(bits.size());
        return HandlePointer(kIcons.MakeIconFromResource(&image));
    };
    const std::string oneBit = InfoHeader(4096, 2 * 1025, 1) + Le32(0xFF0000) + Le32(0) +
                               std::string(2 * 4096 / 8 * 1025, '\0');
    ExpectPicture(handleOf(oneBit).get(), 32, 32, [](uint32_t, uint32_t) { return 0xFFFF0000; });
    EXPECT_EQ(handleOf(InfoHeader(4096, 2 * 1025, 16) + std::string(4096 * 1025 * 2, '\0')),
              nullptr);
    EXPECT_NE(handleOf(InfoHeader(1, 2, 16) + Le32(0)), nullptr);
    EXPECT_EQ(handleOf(InfoHeader(1, 0, 16) + Le32(0)), nullptr);
    EXPECT_EQ(kIcons.MakeIconFromResource(nullptr), nullptr);
    uint32_t side = 9;
    std::vector<uint32_t> pixels;
    EXPECT_FALSE(GetIconPixels(nullptr, side, side, pixels));
    EXPECT_EQ(side, 9U);
}

TEST(Clipboard, CarriesTheColourRowsAndIsEmptiedByAnImageWithoutBits)
{
    TargetImage image(5, 3, 4);
    const auto dib = PackPicture(Vga, 5, 3);
    ASSERT_NE(kIcons.DIBToIconImage(&image, dib.data(), 0), 0);
    ASSERT_NE(kIcons.IconImageToClipBoard(&image), 0);
    TargetImage pasted(5, 3, 24);
    ASSERT_NE(kIcons.IconImageFromClipBoard(&pasted, 0), 0);
    ExpectPicture(HandlePointer(kIcons.MakeIconFromResource(&pasted)).get(), 5, 3, Opaque(Vga));
    ICONIMAGE none{};
    EXPECT_EQ(kIcons.IconImageToClipBoard(&none), 0);
    EXPECT_EQ(kIcons.IconImageFromClipBoard(&pasted, 0), 0);
}

TEST(Clipboard, AHostsHookGetsAndGivesThePackedBitmap)
{
    platform::ClipboardBitmap offered;
    platform::ClipboardBitmap foreign = PackPicture(Grad, 8, 8);
    const auto offer = [&](const platform::ClipboardBitmap& bitmap) {
        offered = bitmap;
        return true;
    };
    const auto take = [&](platform::ClipboardBitmap& bitmap) {
        bitmap = foreign;
        return true;
    };
    const platform::ClipboardHook previous = platform::SetClipboardHook({offer, take});
    TargetImage image(8, 8, 24);
    EXPECT_NE(kIcons.IconImageFromClipBoard(&image, 1), 0);
    EXPECT_NE(kIcons.IconImageToClipBoard(&image), 0);
    EXPECT_EQ(Colours(offered), Colours(Convert(foreign, 8, 8, 24, false)));
    for (std::size_t length = 0; length < foreign.size(); ++length) {
        foreign = PackPicture(Grad, 8, 8);
        foreign.resize(length);
        EXPECT_EQ(kIcons.IconImageFromClipBoard(&image, 1), 0);
    }
    platform::SetClipboardHook(
        {offer, [](platform::ClipboardBitmap&) -> bool { throw std::runtime_error("gone"); }});
    EXPECT_EQ(kIcons.IconImageFromClipBoard(&image, 1), 0);
    platform::SetClipboardHook(previous);
}

TEST(MessageBox, AThrowingHookDoesNotChangeTheResult)
{
    const auto previous = platform::SetMessageBoxHook(
        [](const platform::MessageBoxRequest&) { throw std::runtime_error("no display"); });
    EXPECT_EQ(kIcons.ReadIconFromICOFile(L"missing.ico"), nullptr);
    platform::SetMessageBoxHook(previous);
}

} // namespace
