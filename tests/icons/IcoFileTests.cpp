#include "encap/icons/IcoFile.h"

#include "IconTestSupport.h"
#include "Pictures.h"
#include "encap/icons/IconImage.h"

#include <cstring>

namespace {

using namespace encap;

const CIcons kIcons;

IconPointer ReadIcoFile(const CString& file)
{
    return IconPointer(kIcons.ReadIconFromICOFile(file.c_str()));
}

std::string Signature()
{
    return "\x89PNG\r\n\x1A\n";
}

TEST(IcoFile, ReadsFilesOfOtherPrograms)
{
    struct Image {
        uint32_t width, height, colours;
        Picture picture;
        std::ptrdiff_t colourBits, maskBits; // offsets; of a PNG image, its end
    };
    const std::vector<std::pair<const char*, std::vector<Image>>> files{
        {"icotool-depths.ico",
         {{16, 16, 1, Checks, 40 + 8, 48 + 16 * 4},
          {16, 16, 4, Vga, 40 + 64, 104 + 16 * 8},
          {16, 16, 8, Ramp, 40 + 1024, 1064 + 16 * 16},
          {16, 16, 24, Grad, 40, 40 + 16 * 48},
          {16, 16, 32, Glass, 40, 40 + 16 * 64},
          {5, 3, 24, Grad, 40, 40 + 3 * 16},
          {256, 256, 32, Glass, 1609, 1609}}},
        {"magick-sizes.ico",
         {{16, 16, 32, Glass, 40, 40 + 16 * 64}, {32, 32, 32, Glass, 40, 40 + 32 * 128}}}};
    for (const auto& [name, expected] : files) {
        HICON handles[7]{};
        Error_ReadIconFromICOFile code = ReadIcon_OpenFailed;
        const IconPointer icon(kIcons.ReadIconFromICOFile(Fixture(name).c_str(), handles, code));
        ASSERT_NE(icon, nullptr);
        EXPECT_EQ(code, ReadIcon_Success);
        EXPECT_EQ(icon->changed, 0);
        EXPECT_EQ(icon->icoFileName, Fixture(name));
        EXPECT_EQ(icon->exeFileName, CString());
        ASSERT_EQ(icon->imageCount, expected.size());
        for (uint32_t index = 0; index < icon->imageCount; ++index) {
            SCOPED_TRACE(std::string(name) + " " + std::to_string(index));
            const ICONIMAGE& image = ImagesOf(*icon)[index];
            const HandlePointer handle(handles[index]);
            EXPECT_EQ(image.width, expected[index].width);
            EXPECT_EQ(image.height, expected[index].height);
            EXPECT_EQ(image.colours, expected[index].colours);
            EXPECT_EQ(static_cast<void*>(image.header), image.bits);
            EXPECT_EQ(image.colourBits - image.bits, expected[index].colourBits);
            EXPECT_EQ(image.maskBits - image.bits, expected[index].maskBits);
            ExpectPicture(handle.get(), image.width, image.height, expected[index].picture);
        }
    }
}

TEST(IcoFile, WritesWhatItRead)
{
    const TemporaryFolder folder;
    const CString file = folder.File(L"copy.ico");
    const IconPointer icon = ReadIcoFile(Fixture("icotool-depths.ico"));
    ASSERT_NE(icon, nullptr);
    ASSERT_NE(kIcons.WriteIconToICOFile(icon.get(), file.c_str()), 0);
    std::string bytes;
    ASSERT_TRUE(platform::ReadWholeFile(file, bytes));
    EXPECT_EQ(bytes.substr(0, 6), IcoHeader(7));
    EXPECT_EQ(bytes.substr(6, 8), std::string("\x10\x10\x02\0\x01\0\x01\0", 8));
    EXPECT_EQ(bytes.substr(22, 8), std::string("\x10\x10\x10\0\x01\0\x04\0", 8));
    EXPECT_EQ(bytes.substr(38, 8), std::string("\x10\x10\0\0\x01\0\x08\0", 8));
    EXPECT_EQ(bytes.substr(102, 8), std::string("\0\0\0\0\x01\0\x20\0", 8)) << "256 is stored as 0";
    EXPECT_EQ(kIcons.CalculateImageOffset(icon.get(), 0), 6U + 7 * 16);
    EXPECT_EQ(kIcons.CalculateImageOffset(icon.get(), 9), bytes.size());

    const IconPointer copy = ReadIcoFile(file);
    ASSERT_NE(copy, nullptr);
    for (uint32_t index = 0; index < icon->imageCount; ++index) {
        const ICONIMAGE& from = ImagesOf(*icon)[index];
        const ICONIMAGE& to = ImagesOf(*copy)[index];
        ASSERT_EQ(from.byteCount, to.byteCount);
        EXPECT_EQ(std::memcmp(from.bits, to.bits, to.byteCount), 0);
        EXPECT_EQ(std::memcmp(bytes.data() + kIcons.CalculateImageOffset(icon.get(), index),
                              to.bits, to.byteCount),
                  0);
    }
}

TEST(IcoFile, EveryDepthSurvivesWritingAndReading)
{
    const TemporaryFolder folder;
    const CString file = folder.File(L"depths.ico");
    const std::vector<std::pair<uint32_t, Picture>> depths{{1, Checks},    {4, Vga},   {8, Cube},
                                                           {16, FiveBits}, {24, Grad}, {32, Grad}};
    for (const auto& [bits, picture] : depths) {
        SCOPED_TRACE(bits);
        ICONIMAGE image{};
        image.width = 13;
        image.height = 16;
        image.colours = bits;
        const auto dib = PackPicture(picture, 13, 16);
        ASSERT_NE(kIcons.DIBToIconImage(&image, dib.data(), 0), 0);
        EXPECT_EQ(image.header->biHeight, 32);
        const int written = kIcons.WriteIconToICOFile({&image}, file.c_str());
        std::free(image.bits);
        ASSERT_NE(written, 0);
        const IconPointer icon = ReadIcoFile(file);
        ASSERT_NE(icon, nullptr);
        const HandlePointer handle(kIcons.MakeIconFromResource(icon->images));
        ExpectPicture(handle.get(), 13, 16, Opaque(picture));
    }
}

TEST(IcoFile, FailuresHaveTheirCodesAndMessages)
{
    const CString reallocate = L"Error when reallocating memory for an icon!";
    const CString locate = L"Error when locating content of an icon!";
    const CString header = L"Error when reading header of an icon file!";
    const CString directory = L"Error when reading an icon file!";
    const CString content = L"Error when reading content of an icon!";
    const CString transform = L"Error when transforming inner format of an icon!";
    std::string shared = IcoHeader(40);
    for (int index = 0; index < 40; ++index) {
        shared += IcoEntry(1000, 6 + 40 * 16);
    }
    shared += InfoHeader(1, 2, 1) + std::string(960, '\0');
    const struct {
        std::string bytes;
        int32_t code;
        CString message;     // of the read without codes
        CString codeMessage; // of the read with handles
    } cases[]{
        {"", 3, header, header},
        {IcoHeader(1).substr(0, 5), 3, header, header},
        {IcoHeader(1, 2), 3, header, header},
        {IcoHeader(1, 1, 1), 3, header, header},
        {IcoHeader(65535) + std::string(16, '\0'), 6, directory, directory},
        {IcoHeader(1) + IcoEntry(40, 22).substr(1), 6, directory, directory},
        {shared, 7, reallocate, locate},
        {IcoHeader(1) + IcoEntry(41, 22) + InfoHeader(1, 2, 8), 8, content, content},
        {IcoHeader(1) + IcoEntry(0xFFFFFFFF, 22) + InfoHeader(1, 2, 8), 8, content, content},
        {IcoHeader(1) + IcoEntry(40, 0xFFFFFFFF) + InfoHeader(1, 2, 8), 8, content, content},
        {IcoHeader(1) + IcoEntry(39, 22) + InfoHeader(1, 2, 8), 9, transform, transform},
        {IcoHeader(1) + IcoEntry(0, 22), 9, transform, transform},
        {IcoHeader(1) + IcoEntry(60, 22) + Signature() + std::string(52, 'x'), 9, transform,
         transform},
    };
    const TemporaryFolder folder;
    ShownMessages shown;
    for (const auto& one : cases) {
        SCOPED_TRACE(&one - cases);
        const CString file = folder.File(L"bad.ico");
        WriteBytes(file, one.bytes);
        EXPECT_EQ(kIcons.ReadIconFromICOFile(file.c_str()), nullptr);
        EXPECT_EQ(shown.Take(file, true), Texts{one.message});
        Error_ReadIconFromICOFile code = ReadIcon_Success;
        EXPECT_EQ(kIcons.ReadIconFromICOFile(file.c_str(), nullptr, code), nullptr);
        EXPECT_EQ(code, one.code);
        EXPECT_EQ(shown.Take(file, true), Texts{});
        EXPECT_EQ(kIcons.ReadIconFromICOFile(file.c_str(), nullptr), nullptr);
        EXPECT_EQ(shown.Take(file, true), Texts{one.codeMessage});
    }
    const CString missing = folder.File(L"missing.ico");
    EXPECT_EQ(kIcons.ReadIconFromICOFile(missing.c_str(), nullptr), nullptr);
    EXPECT_EQ(shown.Take(missing, true), Texts{L"Error when opening an icon file!"});
    EXPECT_EQ(kIcons.ReadIconFromICOFile(nullptr), nullptr);
    EXPECT_EQ(shown.Take(L"", true), Texts{L"Error when opening an icon file!"});
}

TEST(IcoFile, HandlesOfOneFileAreLimitedTogether)
{
    // Damaged PNG images of 2048 x 2048 pixels, then one that is whole.
    const std::string side("\0\0\x08\0", 4);
    const std::string large = Signature() + std::string("\0\0\0\x0DIHDR", 8) + side + side +
                              std::string("\x08\x06\0\0\0", 5) + std::string(20, '\0');
    const std::string whole = InfoHeader(1, 2, 24) + Le32(0) + Le32(0);
    const TemporaryFolder folder;
    const CString file = folder.File(L"large.ico");
    for (uint32_t count = 3; count <= 4; ++count) {
        const uint32_t start = 6 + (count + 1) * 16;
        std::string bytes = IcoHeader(count + 1);
        for (uint32_t index = 0; index < count; ++index) {
            bytes += IcoEntry(static_cast<uint32_t>(large.size()), start);
        }
        bytes += IcoEntry(48, start + static_cast<uint32_t>(large.size())) + large + whole;
        WriteBytes(file, bytes);
        HICON handles[5]{};
        Error_ReadIconFromICOFile code = ReadIcon_OpenFailed;
        const IconPointer icon(kIcons.ReadIconFromICOFile(file.c_str(), handles, code));
        ASSERT_NE(icon, nullptr);
        EXPECT_EQ(icon->images[0].width, 2048U);
        EXPECT_EQ(handles[0], nullptr);
        EXPECT_EQ(HandlePointer(handles[count]) != nullptr, count == 3);
    }
}

TEST(IcoFile, RefusesToWriteWhatNoFileCanHold)
{
    const TemporaryFolder folder;
    const CString file = folder.File(L"out.ico");
    ShownMessages shown;
    std::string bits = InfoHeader(1, 2, 8);
    ICONIMAGE image{};
    image.bits = reinterpret_cast<unsigned char*>(bits.data());
    image.byteCount = 39;
    EXPECT_EQ(kIcons.WriteIconToICOFile(std::vector<ICONIMAGE*>{nullptr}, file.c_str()), 0);
    EXPECT_EQ(kIcons.WriteIconToICOFile({&image}, file.c_str()), 0);
    EXPECT_EQ(kIcons.WriteIconToICOFile(nullptr, file.c_str()), 0);
    EXPECT_EQ(shown.Take(file, true), Texts{});
    image.byteCount = 40;
    const std::vector<ICONIMAGE*> tooMany(65536, &image);
    EXPECT_EQ(kIcons.WriteIconToICOFile(tooMany, file.c_str()), 0);
    EXPECT_EQ(shown.Take(file, true), Texts{L"Error when writing header of an icon file!"});
    EXPECT_TRUE(folder.Names().empty());
    const CString noFolder = folder.File(L"none/out.ico");
    EXPECT_EQ(kIcons.WriteIconToICOFile({&image}, noFolder.c_str()), 0);
    EXPECT_EQ(shown.Take(noFolder, true), Texts{L"Error when creating a file!"});

    // A full disk shows in the header; a write that fails later has no message.
    const Texts messages[]{{L"Error when writing header of an icon file!"}, {}, {}};
    for (int step = 1; step <= 3; ++step) {
        platform::FailReplaceStep(step);
        EXPECT_EQ(kIcons.WriteIconToICOFile({&image}, file.c_str()), 0);
        EXPECT_EQ(shown.Take(file, true), messages[step - 1]) << step;
    }
    EXPECT_TRUE(folder.Names().empty());
}

/// A small file with rows at 1, 4 and 24 bits.
std::string SmallIco()
{
    const std::string source = FixtureBytes("icotool-depths.ico");
    const IcoReading reading = ReadIco(AsBytes(source), L"");
    std::string bytes;
    std::vector<const ICONIMAGE*> images{ImagesOf(*reading.icon), ImagesOf(*reading.icon) + 1,
                                         ImagesOf(*reading.icon) + 5};
    EXPECT_EQ(BuildIco(images, bytes), IcoBuild::Done);
    return bytes;
}

TEST(DamagedIcoFile, EveryPrefixHasTheCodeOfWhereItEnds)
{
    const std::string bytes = SmallIco();
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        const IcoReading reading = ReadIco(Prefix(bytes, length), L"name");
        const int32_t expected = length < 6 ? 3 : length < 6 + 3 * 16 ? 6 : 8;
        ASSERT_EQ(reading.error, expected) << length;
        ASSERT_EQ(reading.icon, nullptr);
    }
}

TEST(DamagedIcoFile, EveryByteMayBeWrong)
{
    const std::string bytes = SmallIco();
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        std::vector<unsigned char> damaged = Prefix(bytes, bytes.size());
        damaged[at] = 0xFF;
        const IcoReading reading = ReadIco(damaged, L"name");
        if (reading.icon == nullptr) {
            ASSERT_LT(at, 6U + 3 * 16) << "only header and directory can be refused";
            continue;
        }
        for (uint32_t index = 0; index < reading.icon->imageCount; ++index) {
            const ICONIMAGE& image = ImagesOf(*reading.icon)[index];
            ASSERT_LE(image.colourBits, image.maskBits) << at;
            ASSERT_LE(image.maskBits, image.bits + image.byteCount) << at;
            const HandlePointer handle(kIcons.MakeIconFromResource(&image));
            ASSERT_EQ(PackedBitmapOf(BitsOf(&image)).empty(), handle == nullptr) << at;
        }
    }
}

TEST(DamagedIcoFile, ADamagedPngImageHasNoPixels)
{
    const std::string source = FixtureBytes("icotool-depths.ico");
    const IcoReading reading = ReadIco(AsBytes(source), L"");
    const ByteView png = BitsOf(ImagesOf(*reading.icon) + 6);
    const std::vector<unsigned char> whole(png.begin(), png.end());
    ASSERT_TRUE(HandlePixels(whole));
    for (std::size_t at = 16; at < whole.size() / 2; at += at < 29 ? 1 : 53) {
        std::vector<unsigned char> damaged = whole;
        damaged[at] ^= 0xFF;
        EXPECT_TRUE(at >= 29 || !HandlePixels(damaged)) << at << " is under the header's check sum";
        damaged = whole;
        damaged.resize(at);
        EXPECT_FALSE(HandlePixels(damaged)) << at;
    }
}

} // namespace
