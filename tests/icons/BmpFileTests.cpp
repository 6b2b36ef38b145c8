#include "encap/icons/BmpFile.h"

#include "IconTestSupport.h"
#include "Pictures.h"
#include "encap/icons/Dib.h"

namespace {

using namespace encap;

std::string FileHeader(uint32_t rowsOffset, const std::string& type = "BM", uint32_t reserved = 0)
{
    return type + Le32(0) + Le32(reserved) + Le32(rowsOffset);
}

uint32_t ColourAt(const std::vector<unsigned char>& dib, uint32_t x, uint32_t y)
{
    const auto bitmap = PackedBitmap::Open(dib);
    return bitmap ? bitmap->ColourAt(x, y) : 0xDEADDEAD;
}

TEST(BmpFile, ReadsFilesOfOtherProgramsAndWritesThemBack)
{
    const TemporaryFolder folder;
    const CString copy = folder.File(L"copy.bmp");
    const std::vector<std::tuple<const char*, uint32_t, Picture>> files{
        {"magick-checks.bmp", 1, Checks},
        {"magick-vga.bmp", 4, Vga},
        {"magick-ramp.bmp", 8, Ramp},
        {"magick-grad.bmp", 24, Grad}};
    for (const auto& [name, bits, picture] : files) {
        SCOPED_TRACE(name);
        const std::vector<unsigned char> dib = CDib::ReadFile(Fixture(name).c_str());
        ASSERT_FALSE(dib.empty());
        EXPECT_EQ(CDib::PackedSize(dib.data()), dib.size());
        for (uint32_t y = 0; y < 16; ++y) {
            for (uint32_t x = 0; x < 16; ++x) {
                ASSERT_EQ(ColourAt(dib, x, y), picture(x, y) & 0xFFFFFF) << x << "," << y;
            }
        }
        ASSERT_TRUE(CDib::WriteFile(copy.c_str(), dib.data(), dib.size()));
        EXPECT_EQ(CDib::ReadFile(copy.c_str()), dib);
        const std::vector<unsigned char> inMemory = CDib::ToFileBytes(dib.data(), dib.size());
        EXPECT_EQ(CDib::FromFileBytes(inMemory.data(), inMemory.size()), dib);
    }
}

TEST(BmpFile, FailuresHaveTheirMessages)
{
    const CString header = L"Error when reading header of a bitmap file!";
    const CString unknown = L"Unknown bitmap format file!";
    const CString info = L"Error when reading a bitmap information header!";
    const CString table = L"Error when reading bitmap color table!";
    const CString offset = L"Error when locating size of a bitmap file!";
    const CString rows = L"Error when reading a bitmap file!";
    const std::string four(4, '\0');
    const struct {
        std::string bytes;
        CString message;
    } cases[]{
        {"", header},
        {FileHeader(0).substr(1), header},
        {FileHeader(0, "BA") + InfoHeader(1, 1, 24) + four, unknown},
        {FileHeader(0, "BM", 0x10000) + InfoHeader(1, 1, 24) + four, unknown},
        {FileHeader(0), info},
        {FileHeader(0) + InfoHeader(1, 1, 24).substr(0, 39), info},
        {FileHeader(0) + Le32(12) + std::string(40, '\0'), L"Not support a bitmap of OS/2 style!"},
        {FileHeader(0) + InfoHeader(1, 1, 8) + std::string(1023, '\0'), table},
        {FileHeader(0) + InfoHeader(1, 1, 8, 0, 0xFFFFFFFF) + std::string(1023, '\0'), table},
        {FileHeader(0x80000000) + InfoHeader(1, 1, 24) + four, offset},
        {FileHeader(59) + InfoHeader(1, 1, 24) + four, rows},
        {FileHeader(0x7FFFFFFF) + InfoHeader(1, 1, 24) + four, rows},
        {FileHeader(0) + InfoHeader(1, 2, 24) + four, rows},
        {FileHeader(0) + InfoHeader(0, 1, 24) + four, rows},
        {FileHeader(0) + InfoHeader(1, 0, 24) + four, rows},
        {FileHeader(0) + InfoHeader(0xFFFFFFFF, 1, 24) + four, rows},
        {FileHeader(0) + InfoHeader(1, 0x80000000, 24) + four, rows},
        {FileHeader(0) + InfoHeader(0x7FFFFFFF, 0x7FFFFFFF, 32) + four, rows},
        {FileHeader(0) + InfoHeader(1, 1, 2) + four + four + four + four + four, rows},
        {FileHeader(0) + InfoHeader(1, 1, 0) + four, rows},
        {FileHeader(0) + InfoHeader(1, 1, 32, 3) + std::string(16, '\0'), rows},
        {FixtureBytes("magick-rle.bmp"), rows},
        {FixtureBytes("magick-v5.bmp"), L"Not support a bitmap of OS/2 style!"},
    };
    const TemporaryFolder folder;
    const CString file = folder.File(L"bad.bmp");
    ShownMessages shown;
    for (const auto& one : cases) {
        SCOPED_TRACE(&one - cases);
        WriteBytes(file, one.bytes);
        EXPECT_TRUE(CDib::ReadFile(file.c_str()).empty());
        EXPECT_EQ(shown.Take(file, false), Texts{one.message});
    }
    const CString missing = folder.File(L"missing.bmp");
    EXPECT_TRUE(CDib::ReadFile(missing.c_str()).empty());
    EXPECT_EQ(shown.Take(missing, false), Texts{L"Error when opening a bitmap file!"});

    const auto dib = PackPicture(Grad, 2, 2);
    const CString noFolder = folder.File(L"none/out.bmp");
    EXPECT_FALSE(CDib::WriteFile(noFolder.c_str(), dib.data(), dib.size()));
    EXPECT_EQ(shown.Take(noFolder, false), Texts{Widen("Fail to create a bitmap file\xA3\xA1")});
    EXPECT_FALSE(CDib::WriteFile(file.c_str(), dib.data(), dib.size() - 1));
    EXPECT_EQ(shown.Take(file, false), Texts{L"Error when writing header of a bitmap file!"});
    for (int step = 1; step <= 3; ++step) {
        platform::FailReplaceStep(step);
        EXPECT_FALSE(CDib::WriteFile(file.c_str(), dib.data(), dib.size()));
        EXPECT_EQ(shown.Take(file, false), Texts{L"Error when writing header of a bitmap file!"});
    }
}

TEST(BmpFile, RowsLieWhereTheFileSaysTopDownOnesIncluded)
{
    const std::string rows = std::string("\x01\x02\x03\0", 4) + std::string("\x11\x12\x13\0", 4);
    const std::string gap = "gap";
    std::vector<unsigned char> dib;
    const std::string spaced = FileHeader(57) + InfoHeader(1, 2, 24) + gap + rows;
    ASSERT_FALSE(ReadBmp(AsBytes(spaced), dib));
    EXPECT_EQ(ColourAt(dib, 0, 0), 0x131211U);
    EXPECT_EQ(ColourAt(dib, 0, 1), 0x030201U);
    const std::string topDown = FileHeader(0) + InfoHeader(1, 0xFFFFFFFE, 24) + rows;
    ASSERT_FALSE(ReadBmp(AsBytes(topDown), dib));
    EXPECT_EQ(ColourAt(dib, 0, 0), 0x030201U);
    EXPECT_EQ(ColourAt(dib, 0, 1), 0x131211U);
}

TEST(BmpFile, AFalseColourCountIsCutToTheDepth)
{
    const std::string file = FileHeader(0) + InfoHeader(8, 1, 1, 0, 0xFFFFFFFF) + Le32(0x102030) +
                             Le32(0x405060) + std::string("\x80\0\0\0", 4);
    std::vector<unsigned char> dib;
    ASSERT_FALSE(ReadBmp(AsBytes(file), dib));
    EXPECT_EQ(CDib::PaletteEntries(dib.data()), 2U);
    EXPECT_EQ(ColourAt(dib, 0, 0), 0x405060U);
    EXPECT_EQ(ColourAt(dib, 1, 0), 0x102030U);
}

TEST(BmpFile, ALongerHeaderIsWrittenAsTheCommonOne)
{
    const std::string more(68, '\x7F');
    const std::string longHeader = Le32(108) + InfoHeader(1, 1, 8, 0, 2).substr(4) + more;
    const std::string file = BuildBmp(
        AsBytes(longHeader + Le32(0x102030) + Le32(0x405060) + std::string("\1\0\0\0", 4)));
    std::vector<unsigned char> dib;
    ASSERT_FALSE(ReadBmp(AsBytes(file), dib));
    EXPECT_EQ(ColourAt(dib, 0, 0), 0x405060U);
    const std::string masks = Le32(0xF800) + Le32(0x07E0) + Le32(0x001F);
    const std::string withMasks = InfoHeader(1, 1, 16, 3).substr(4) + masks;
    const std::string pixel("\x00\xF8\0\0", 4);
    const std::string inside = BuildBmp(AsBytes(Le32(108) + withMasks + more.substr(12) + pixel));
    EXPECT_EQ(inside, BuildBmp(AsBytes(Le32(40) + withMasks + pixel)));
    EXPECT_EQ(inside.substr(54), masks + pixel);
    EXPECT_TRUE(BuildBmp(AsBytes(Le32(44) + withMasks.substr(0, 40) + pixel)).empty());
}

TEST(DamagedBmpFile, EveryPrefixAndEveryWrongByteIsDefined)
{
    const std::string bytes = FixtureBytes("magick-vga.bmp");
    std::vector<unsigned char> dib;
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        const IconMessage expected = length < 14        ? IconMessage::ReadBitmapHeader
                                     : length < 54      ? IconMessage::ReadBitmapInfo
                                     : length < 54 + 64 ? IconMessage::ReadColourTable
                                                        : IconMessage::ReadRows;
        ASSERT_EQ(ReadBmp(Prefix(bytes, length), dib), expected) << length;
    }
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        std::vector<unsigned char> damaged = Prefix(bytes, bytes.size());
        damaged[at] = 0xFF;
        if (ReadBmp(damaged, dib)) {
            ASSERT_LT(at, 54U) << "only the headers can be refused";
        } else {
            ASSERT_LE(CDib::PackedSize(dib.data()), bytes.size());
            ASSERT_NE(ColourAt(dib, 0, 0), 0xDEADDEAD) << at;
        }
    }
}

} // namespace
