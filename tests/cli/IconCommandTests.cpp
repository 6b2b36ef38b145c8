#include "cli/icon/HalfBlocks.h"
#include "tests/cli/CliRun.h"

#include <gmock/gmock.h>

namespace encap::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::string Icon(const std::string& name)
{
    return std::string(ENCAP_TEST_DATA) + "/icons/" + name;
}

CliRun RunIcon(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), "icon");
    return CliRun(arguments);
}

/// What list tells of the images of a file: size, bits and form, one a line.
std::string Images(const std::string& path)
{
    const CliRun run = RunIcon({"list", path});
    EXPECT_EQ(0, run.status) << run.err;
    std::istringstream lines(run.out.substr(run.out.find("-\n") + 2));
    std::string images;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string number;
        std::string width;
        std::string height;
        std::string bits;
        words >> number >> width >> height >> bits;
        images += width + 'x' + height + ' ' + bits + line.substr(line.rfind(' ')) + '\n';
    }
    return images;
}

/// A run that fails, and how the lines that it tells begin; nothing else is printed.
struct Failure {
    std::vector<std::string> arguments;
    int status;
    std::vector<std::string> lines;
};

void ExpectFailures(const std::vector<Failure>& failures)
{
    for (const Failure& one : failures) {
        SCOPED_TRACE(&one - failures.data());
        const CliRun run = RunIcon(one.arguments);
        EXPECT_EQ(one.status, run.status) << run.err;
        EXPECT_EQ("", run.out);
        std::istringstream lines(run.err);
        std::string line;
        for (const std::string& expected : one.lines) {
            std::getline(lines, line);
            EXPECT_THAT(line, StartsWith("encap: " + expected));
        }
        EXPECT_FALSE(std::getline(lines, line)) << line;
    }
}

TEST(IconCommand, FilesThatAreNoImagesAreToldWithTheLibrarysMessages)
{
    const TemporaryFolder folder;
    const std::string none = Utf8(folder.File(L"none.ico"));
    const std::string noDll = Utf8(folder.File(L"none.DLL"));
    const std::string text = WriteFile(folder, L"text", "text");
    const std::string cursor = WriteFile(folder, L"cursor", std::string("\0\0\2\0\1\0", 6));
    const std::string dos = WriteFile(folder, L"dos", "MZ");
    const std::string png = WriteFile(folder, L"cut.png", "\x89PNG\r\n\x1A\n");
    ExpectFailures({
        {{"list", none},
         3,
         {none + ": Error when opening an icon file!", none + ": there is no such file"}},
        {{"list", noDll},
         3,
         {noDll + ": \u00D7\u00B0\u00C8\u00EB\u00CE\u00C4\u00BC\u00FE\u00CA\u00B1\u00B3\u00F6\u00B4"
                  "\u00ED - \u00C7\u00EB\u00D1\u00A1\u00D4\u00F1\u00D2\u00BB\u00B8\u00F6WIN32\u00B5"
                  "\u00C4DLL\u00BB\u00F2EXE\u00CE\u00C4\u00BC\u00FE!",
          noDll + ": Error when loading a file - Please select a WIN32 DLL or EXE file!",
          noDll + ": there is no such file"}},
        {{"list", text}, 3, {text + ": it is no ICO, BMP or PNG file and no executable"}},
        {{"list", Utf8(folder.File(L""))}, 3, {Utf8(folder.File(L"")) + ": it is a directory"}},
        {{"list", cursor}, 3, {cursor + ": Error when reading header of an icon file!"}},
        {{"list", dos}, 3, {dos + ": \u00D7", dos + ": Error when loading a file"}},
        {{"list", png}, 3, {png + ": it is no PNG file, or is cut off in its header"}},
        {{"list", Icon("magick-rle.bmp")},
         3,
         {Icon("magick-rle.bmp") + ": Error when reading a bitmap file!"}},
    });
}

TEST(IconCommand, WhatCannotBeDoneHasItsLineAndStatus)
{
    const TemporaryFolder folder;
    const std::string out = Utf8(folder.File(L"out.ico"));
    const std::string ico = Icon("icotool-depths.ico");
    const std::string dll = Icon("windres-64.dll");
    const std::string path = Utf8(folder.File(L"none/out.ico"));
    std::string bytes = ReadFile(Icon("magick-grad.bmp")) + std::string(48, '\0');
    bytes.replace(18, 8, std::string("\x10\x01\0\0\1\0\0\0", 8)); // width and height
    const std::string broad = WriteFile(folder, L"broad.bmp", bytes);
    const std::string png("\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\0\x08\0\0\0\x08\x08\6\0\0\0", 29);
    const std::string cut = WriteFile(folder, L"cut.png", png + std::string(20, '\0'));
    ExpectFailures({
        {{"extract", ico}, 2, {"-o FILE is required"}},
        {{"extract", ico, "-o", "out.gif"}, 2, {"out.gif: -o names no file that ends in"}},
        {{"extract", ico, "-o", ico}, 2, {ico + ": -o names a file that is read"}},
        {{"extract", ico, "--name", "A", "-o", out}, 2, {ico + ": --name is for executables"}},
        {{"extract", dll, "--name", "A", "-o", out},
         2,
         {dll + ": there is no icon \"A\"; there are MAINICON, #7"}},
        {{"extract", dll, "--image", "8", "-o", out}, 2, {dll + ": --image: there is no image 8"}},
        {{"extract", ico, "--size", "16", "--bits", "2", "-o", out},
         2,
         {ico + ": no image is like that; there are 16x16 --bits 1, 16x16 --bits 4"}},
        {{"extract", ico, "--size", "16x0", "-o", out}, 2, {"--size takes WIDTHxHEIGHT"}},
        {{"extract", ico, "-o", path}, 3, {path + ": Error when creating a file!"}},
        {{"build", ico, "-o", "a.png"}, 2, {"-o: build writes an ICO file"}},
        {{"build", dll, "-o", out}, 2, {dll + ": an icon of an executable is taken out"}},
        {{"convert", ico, "--size", "16", "--size", "8", "-o", "a.png"}, 2, {"several --size"}},
        {{"convert", ico, "--size", "257", "-o", out}, 3, {ico + ": an image of 257x257 pixels"}},
        {{"convert", ico, "--bits", "2", "-o", out}, 2, {"--bits: '2' is none of 1, 4, 8"}},
        {{"extract", broad, "-o", out}, 3, {broad + ": an image of 272x1 pixels is too large"}},
        {{"build", cut, "-o", out}, 3, {cut + ": the image of 8x8 pixels is damaged"}},
        {{"extract", cut, "-o", out}, 3, {cut + ": the image of 8x8 pixels is damaged"}},
        {{"convert", cut, "-o", out}, 3, {cut + ": the image of 8x8 pixels is damaged"}},
        {{"show", ico}, 3, {"standard output is no terminal; --force"}},
        {{"show", ico, "--background", "red"}, 2, {"--background takes a colour of six digits"}},
        {{}, 2, {"an action is missing, one of list, extract, build"}},
        {{"lists", ico}, 2, {"'lists' is none of list, extract, build"}},
        {{"list"}, 2, {"FILE is required: 'encap icon list --help'"}},
    });
    EXPECT_FALSE(platform::FileExists(folder.File(L"out.ico")));
}

TEST(IconCommand, WhatIsTakenApartAndPutTogetherIsTheSameFile)
{
    const TemporaryFolder folder;
    const std::string original = ReadFile(Icon("icotool-depths.ico"));
    const std::string out = Utf8(folder.File(L"out.ico"));
    for (const char* library : {"windres-64.dll", "windres-32.dll"}) {
        EXPECT_EQ(0, RunIcon({"extract", Icon(library), "-o", out}).status);
        EXPECT_EQ(original, ReadFile(out));
        EXPECT_EQ(0, RunIcon({"extract", Icon(library), "--name", "#7", "-o", out}).status);
        EXPECT_EQ(ReadFile(Icon("magick-sizes.ico")), ReadFile(out));
    }
    std::vector<std::string> build{"build", "-o", out};
    for (const char* number : {"1", "2", "3", "4", "5", "6"}) {
        build.push_back(Utf8(folder.File(L"part")) + number + ".ico");
        EXPECT_EQ(0, RunIcon({"extract", Icon("icotool-depths.ico"), "--image", number, "-o",
                              build.back()})
                         .status);
    }
    build.push_back(Utf8(folder.File(L"7.png")));
    EXPECT_EQ(0, RunIcon({"extract", Icon("icotool-depths.ico"), "-o", build.back()}).status);
    EXPECT_EQ(0, RunIcon(build).status);
    EXPECT_EQ(original, ReadFile(out)) << "images and PNG files are kept byte for byte";
}

TEST(IconCommand, ConvertsSizesDepthsAndForms)
{
    const TemporaryFolder folder;
    const std::string source = Icon("icotool-depths.ico");
    const std::string out = Utf8(folder.File(L"out.ico"));
    const struct {
        std::vector<std::string> options;
        const char* images;
    } cases[]{
        {{"--size", "16", "--size", "24x10", "--size", "256"},
         "16x16 32 BMP\n24x10 32 BMP\n256x256 32 PNG\n"},
        {{"--image", "6", "--bits", "8"}, "5x3 8 BMP\n"},
        {{"--image", "2", "--size", "48"}, "48x48 4 BMP\n"},
        {{"--image", "7", "--bits", "4", "--size", "32"}, "32x32 4 BMP\n"},
        {{"--image", "7", "--form", "bmp"}, "256x256 32 BMP\n"},
        {{"--image", "1", "--form", "png"}, "16x16 32 PNG\n"},
        {{"--bits", "1", "--size", "8"}, "8x8 1 BMP\n"},
    };
    for (const auto& one : cases) {
        std::vector<std::string> arguments{"convert", source, "-o", out};
        arguments.insert(arguments.end(), one.options.begin(), one.options.end());
        const CliRun run = RunIcon(arguments);
        EXPECT_EQ(0, run.status) << run.err;
        EXPECT_EQ(one.images, Images(out));
    }
    EXPECT_EQ(0, RunIcon({"convert", source, "-o", out}).status);
    EXPECT_EQ(ReadFile(source), ReadFile(out)) << "nothing to convert is nothing changed";
}

TEST(IconCommand, TakesBitmapsThatTheLibraryAloneRefuses)
{
    const TemporaryFolder folder;
    const std::string out = Utf8(folder.File(L"out.ico"));
    const std::string long5 = ReadFile(Icon("magick-v5.bmp"));
    EXPECT_EQ(0, RunIcon({"build", Icon("magick-v5.bmp"), "-o", out}).status);
    EXPECT_EQ("16x16 32 BMP\n", Images(out));
    for (std::size_t length = 14; length < long5.size(); length += 13) {
        const std::string cut = WriteFile(folder, L"cut.bmp", long5.substr(0, length));
        EXPECT_EQ(3, RunIcon({"list", cut}).status) << length;
    }
    // A bitmap of 1 bit in two colours that an icon of 1 bit does not have.
    std::string coloured = ReadFile(Icon("magick-checks.bmp"));
    EXPECT_EQ(0, RunIcon({"build", Icon("magick-checks.bmp"), "-o", out}).status);
    EXPECT_EQ("16x16 1 BMP\n", Images(out));
    coloured.replace(54, 3, "\x10\x20\x30");
    const std::string bmp = WriteFile(folder, L"coloured.bmp", coloured);
    EXPECT_EQ(0, RunIcon({"build", bmp, "-o", out}).status);
    EXPECT_EQ("16x16 24 BMP\n", Images(out));
    EXPECT_THAT(ReadFile(out), HasSubstr("\x10\x20\x30\x10\x20\x30"));
}

TEST(IconCommand, DamageIsListedAndTold)
{
    const TemporaryFolder folder;
    std::string bytes = ReadFile(Icon("icotool-depths.ico"));
    const std::size_t third = static_cast<unsigned char>(bytes[6 + 2 * 16 + 12]) +
                              256U * static_cast<unsigned char>(bytes[6 + 2 * 16 + 13]);
    bytes[third + 5] = '\x40'; // the third image is wider than its bytes
    const std::string path = WriteFile(folder, L"damaged.ico", bytes);
    const CliRun run = RunIcon({"list", path});
    EXPECT_EQ(1, run.status);
    EXPECT_THAT(run.out, HasSubstr("  3  16400      16     8      256   1384  BMP, damaged\n"));
    EXPECT_EQ("encap: " + path + ": image 3 is damaged, or has too many pixels\n", run.err);
    EXPECT_THAT(RunIcon({"list", path, "--format", "json"}).out,
                HasSubstr("\"form\": \"bmp\", \"damaged\": true}"));
    const std::string out = Utf8(folder.File(L"out.png"));
    const std::string damaged = "the image of 16400x16 pixels is damaged";
    ExpectRefusal(RunIcon({"extract", path, "--image", "3", "-o", out}), 3, damaged);
    ExpectRefusal(RunIcon({"convert", path, "--image", "3", "--bits", "1", "-o", out}), 3, damaged);
    ExpectRefusal(RunIcon({"show", path, "--image", "3", "--force"}), 3, damaged);
    EXPECT_EQ(0, RunIcon({"extract", path, "--image", "4", "-o", out}).status);
    bytes.replace(third + 4, 4, "\xFF\xFF\xFF\x7F"); // past any number that is decoded to see it
    EXPECT_EQ(1, RunIcon({"list", WriteFile(folder, L"damaged.ico", bytes)}).status);
}

TEST(IconCommand, AFailedWriteLeavesTheOldFileAndHasItsMessage)
{
    const TemporaryFolder folder;
    const std::string header = "Error when writing header of a";
    const struct {
        const wchar_t* name;
        int step;
        std::string message;
    } cases[]{
        {L"out.ico", 1, header + "n icon file!"},
        {L"out.ico", 2, "the file cannot be written"},
        {L"out.bmp", 1, header + " bitmap file!"},
        {L"out.bmp", 3, header + " bitmap file!"},
        {L"out.png", 1, "the file cannot be written"},
    };
    for (const auto& one : cases) {
        const std::string out = WriteFile(folder, one.name, "old");
        platform::FailReplaceStep(one.step);
        ExpectRefusal(RunIcon({"extract", Icon("icotool-depths.ico"), "-o", out}), 3,
                      out + ": " + one.message);
        EXPECT_EQ("old", ReadFile(out));
    }
}

TEST(HalfBlocks, ShowTwoPixelsACharacter)
{
    constexpr uint32_t kRed = 0xFFFF0000;
    constexpr uint32_t kBlue = 0xFF0000FF;
    // Both, both again, upper only, lower only, neither; the last row has nothing below it.
    const std::vector<uint32_t> pixels{kRed,  kRed,  kRed, 0,          0, //
                                       kBlue, kBlue, 0,    0x800000FF, 0, //
                                       kRed,  0,     0,    0,          0};
    EXPECT_EQ("\x1B[48;2;0;0;255m\x1B[38;2;255;0;0m\u2580\u2580\x1B[49m\u2580"
              "\x1B[38;2;0;0;128m\u2584 \x1B[0m\n"
              "\x1B[38;2;255;0;0m\u2580    \x1B[0m\n",
              cli::DrawHalfBlocks(pixels, 5, 3, std::nullopt));
    EXPECT_EQ("\x1B[48;2;127;127;255m\x1B[38;2;255;255;255m\u2580\x1B[0m\n",
              cli::DrawHalfBlocks({0, 0x800000FF}, 1, 2, 0xFFFFFF));
    EXPECT_EQ("", cli::DrawHalfBlocks({}, 0, 0, std::nullopt));
}

// Whatever is damaged, the answer is a status of the list, and a message when it is not 0.
TEST(IconCommand, DamagedFilesGiveAStatusAndAMessage)
{
    const TemporaryFolder folder;
    const std::string out = Utf8(folder.File(L"out.png"));
    for (const char* name : {"icotool-depths.ico", "magick-vga.bmp", "windres-64.dll"}) {
        const std::string bytes = ReadFile(Icon(name));
        const std::size_t step = bytes.size() / 25 + 1;
        for (std::size_t at = 1; at < bytes.size(); at += step) {
            SCOPED_TRACE(at);
            std::string damaged = bytes;
            damaged[at] = static_cast<char>(damaged[at] ^ 0x81);
            for (const std::string& content : {bytes.substr(0, at), damaged}) {
                const std::string path = WriteFile(folder, L"damaged", content);
                const CliRun list = RunIcon({"list", path});
                EXPECT_TRUE(list.status == 0 || list.status == 1 || list.status == 3);
                EXPECT_EQ(list.status == 0, list.err.empty()) << list.err;
                const CliRun extract = RunIcon({"extract", path, "-o", out});
                EXPECT_TRUE(extract.status == 0 || extract.status == 3) << extract.err;
                EXPECT_EQ(extract.status == 0, extract.err.empty()) << extract.err;
            }
        }
    }
}

} // namespace
} // namespace encap::test
