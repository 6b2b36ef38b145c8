#include "encap/icons/PeResources.h"

#include "IconTestSupport.h"
#include "Pictures.h"
#include "encap/icons/OwnedIcon.h"

#include <algorithm>
#include <cstring>

namespace {

using namespace encap;

const CIcons kIcons;
const char* const kLibraries[]{"windres-64.dll", "windres-32.dll"};

IconPointer ReadGroup(const CString& file, const wchar_t* group)
{
    return IconPointer(kIcons.ReadIconFromEXEFile(file.c_str(), group));
}

const wchar_t* NumberName(std::uintptr_t number)
{
    return reinterpret_cast<const wchar_t*>(number);
}

TEST(PeResources, GroupsOfBothWidthsHoldTheImagesOfTheirIcon)
{
    const IconPointer original(kIcons.ReadIconFromICOFile(Fixture("icotool-depths.ico").c_str()));
    ASSERT_NE(original, nullptr);
    for (const char* library : kLibraries) {
        SCOPED_TRACE(library);
        const IconPointer icon = ReadGroup(Fixture(library), L"MainIcon");
        ASSERT_NE(icon, nullptr);
        EXPECT_EQ(icon->exeFileName, Fixture(library));
        EXPECT_EQ(icon->icoFileName, CString());
        ASSERT_EQ(icon->imageCount, original->imageCount);
        for (uint32_t index = 0; index < icon->imageCount; ++index) {
            const ICONIMAGE& got = ImagesOf(*icon)[index];
            const ICONIMAGE& wanted = ImagesOf(*original)[index];
            ASSERT_EQ(got.byteCount, wanted.byteCount);
            EXPECT_EQ(std::memcmp(got.bits, wanted.bits, got.byteCount), 0);
            EXPECT_EQ(got.width, wanted.width);
            EXPECT_EQ(got.maskBits - got.bits, wanted.maskBits - wanted.bits);
        }
    }
}

TEST(PeResources, NamesAreTextsOrNumbersAndMissingOnesShowNothing)
{
    ShownMessages shown;
    for (const char* library : kLibraries) {
        const CString file = Fixture(library);
        for (const wchar_t* name : {NumberName(7), L"#7"}) {
            const IconPointer icon = ReadGroup(file, name);
            ASSERT_NE(icon, nullptr);
            EXPECT_EQ(icon->imageCount, 2U);
        }
        const wchar_t* const missing[]{nullptr, L"",       L"MAINICO", L"MAINICON2",  L"7",
                                       L"#8",   L"#65543", L"#",       NumberName(14)};
        for (const wchar_t* name : missing) {
            EXPECT_EQ(ReadGroup(file, name), nullptr);
        }
        EXPECT_EQ(shown.Take(file, true), Texts{});
    }
}

TEST(PeResources, FilesThatAreNoSuchExecutableShowBothMessages)
{
    const Texts both{
        Widen("\xD7\xB0\xC8\xEB\xCE\xC4\xBC\xFE\xCA\xB1\xB3\xF6\xB4\xED - \xC7\xEB\xD1\xA1\xD4\xF1"
              "\xD2\xBB\xB8\xF6WIN32\xB5\xC4"
              "DLL\xBB\xF2"
              "EXE\xCE\xC4\xBC\xFE!"),
        L"Error when loading a file - Please select a WIN32 DLL or EXE file!"};
    const std::string sixteenBit =
        "MZ" + std::string(58, '\0') + Le32(64) + "NE" + std::string(200, '\0');
    std::string rom = FixtureBytes("windres-32.dll");
    rom[0x98] = 7; // the magic of the optional header: a ROM image
    const TemporaryFolder folder;
    const CString file = folder.File(L"some.exe");
    ShownMessages shown;
    for (const std::string& bytes : {std::string(), std::string("MZ"), sixteenBit, rom}) {
        WriteBytes(file, bytes);
        EXPECT_EQ(ReadGroup(file, L"MAINICON"), nullptr);
        EXPECT_EQ(shown.Take(file, true), both);
    }
    const CString missing = folder.File(L"missing.exe");
    EXPECT_EQ(ReadGroup(missing, nullptr), nullptr);
    EXPECT_EQ(shown.Take(missing, true), both);
}

TEST(PeResources, AMalformedImageShowsBothMessages)
{
    std::string bytes = FixtureBytes("windres-64.dll");
    const std::string entry = Le32(100); // the byte count of the 5 x 3 image
    const std::size_t at = bytes.find(entry + Le32(0) + Le32(0));
    ASSERT_NE(at, std::string::npos);
    bytes.replace(at, 4, Le32(39));
    const TemporaryFolder folder;
    const CString file = folder.File(L"some.dll");
    WriteBytes(file, bytes);
    ShownMessages shown;
    EXPECT_EQ(ReadGroup(file, L"MAINICON"), nullptr);
    const Texts both{Widen("\xD7\xAA\xBB\xBB\xB3\xC9\xCD\xBC\xB1\xEA\xC4\xDA\xB2\xBF\xB8\xF1\xCA"
                           "\xBD\xCA\xB1\xB3\xF6\xB4\xED!"),
                     L"Error when transforming to inner format of an icon!"};
    EXPECT_EQ(shown.Take(file, true), both);
}

TEST(PeResources, TheBestIconIsNearestInSizeThenDeepest)
{
    const IconGroupEntry small{16, 16, 32, 1};
    const IconGroupEntry plain{32, 32, 8, 2};
    const IconGroupEntry deep{32, 32, 32, 3};
    const IconGroupEntry tooDeep{32, 32, 48, 4};
    const IconGroupEntry large{256, 256, 32, 5};
    EXPECT_EQ(BestIcon({large, small, plain, tooDeep, deep})->imageId, 3);
    EXPECT_EQ(BestIcon({large, small})->imageId, 1);
    EXPECT_EQ(BestIcon({tooDeep, plain})->imageId, 2);
    EXPECT_EQ(BestIcon({}), nullptr);

    for (const char* library : kLibraries) {
        HINSTANCE executable = OpenExecutable(Fixture(library).c_str());
        ASSERT_NE(executable, nullptr);
        const HandlePointer best(kIcons.GetIconFromInstance(executable, NumberName(7)));
        ExpectPicture(best.get(), 32, 32, Glass);
        const HandlePointer deepest(kIcons.GetIconFromInstance(executable, L"mainicon"));
        ExpectPicture(deepest.get(), 16, 16, Glass);
        EXPECT_EQ(kIcons.GetIconFromInstance(executable, L"OTHER"), nullptr);
        CloseExecutable(executable);
    }
    EXPECT_EQ(kIcons.GetIconFromInstance(nullptr, L"MAINICON"), nullptr);
    EXPECT_EQ(OpenExecutable(Fixture("none.dll").c_str()), nullptr);
}

/// An executable whose one section is the resource tree at address 0x1000.
std::string Executable(const std::string& tree)
{
    const std::string optional = Le16(0x20B) + std::string(106, '\0') + Le32(3) +
                                 std::string(16, '\0') + Le32(0x1000) + Le32(0);
    const std::string coff = "PE" + Le16(0) + Le16(0x8664) + Le16(1) + std::string(12, '\0') +
                             Le16(static_cast<uint32_t>(optional.size())) + Le16(0);
    const std::string headers = "MZ" + std::string(58, '\0') + Le32(64) + coff + optional;
    const auto size = static_cast<uint32_t>(tree.size());
    const auto offset = static_cast<uint32_t>(headers.size() + 40);
    return headers + ".rsrc" + std::string(3, '\0') + Le32(size) + Le32(0x1000) + Le32(size) +
           Le32(offset) + std::string(16, '\0') + tree;
}

std::string Directory(uint32_t id, uint32_t target)
{
    return std::string(12, '\0') + Le16(0) + Le16(1) + Le32(id) + Le32(target);
}

TEST(DamagedExecutable, ATreeThatLeadsIntoItselfEnds)
{
    constexpr uint32_t kSub = 0x80000000;
    const std::string names = Directory(14, kSub | 24) + Directory(1, kSub | 48);
    const struct {
        std::string tree;
        bool isFound;
    } cases[]{
        {names + Directory(0, 72) + Le32(0x1000) + Le32(4) + Le32(0) + Le32(0), true},
        {Directory(14, kSub), false},                  // the root below itself
        {names + Directory(0, kSub | 48), false},      // a fourth level
        {Directory(14, 24) + Directory(1, 48), false}, // data in place of a directory
        {names, false},                                // no third level
        {names + Directory(0, 72), false},             // no data entry
        {names + Directory(0, 72) + Le32(0x1000) + Le32(0xFFFFFFFF) + Le32(0) + Le32(0), false},
        {names + Directory(0, 72) + Le32(0xFFFFFFF0) + Le32(4) + Le32(0) + Le32(0), false},
        {names + Directory(0, 72) + Le32(0xFFF) + Le32(4) + Le32(0) + Le32(0), false},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(&one - cases);
        const std::string file = Executable(one.tree);
        const auto resources = PeResources::Open(AsBytes(file));
        ASSERT_TRUE(resources);
        EXPECT_EQ(resources->Find(14, {1, {}}).has_value(), one.isFound);
    }
    const std::string group = Le16(0) + Le16(1) + Le16(2) + std::string(14 + 13, '\0');
    EXPECT_FALSE(ReadIconGroup(AsBytes(group))) << "it counts more than it holds";
    EXPECT_TRUE(ReadIconGroup(AsBytes(group + "x")));
}

TEST(PeResources, AllGroupsOfAFileAreReadInItsOrder)
{
    ShownMessages shown;
    for (const char* library : kLibraries) {
        const CString file = Fixture(library);
        std::vector<NamedIconResource> icons;
        ASSERT_TRUE(kIcons.ReadIconsFromEXEFile(file.c_str(), icons));
        ASSERT_EQ(icons.size(), 2U);
        EXPECT_EQ(icons[0].name, L"MAINICON");
        EXPECT_EQ(icons[1].name, L"#7");
        for (const NamedIconResource& named : icons) {
            const IconPointer single = ReadGroup(file, named.name.c_str());
            ASSERT_TRUE(named.icon != nullptr && single != nullptr);
            EXPECT_EQ(named.icon->exeFileName, file);
            ASSERT_EQ(named.icon->imageCount, single->imageCount);
            EXPECT_TRUE(std::equal(named.icon->images[0].bits,
                                   named.icon->images[0].bits + named.icon->images[0].byteCount,
                                   single->images[0].bits));
        }
        EXPECT_EQ(shown.Take(file, true), Texts{});
    }
}

TEST(DamagedExecutable, ItsIconsAreNamedAndLimitedByItsLength)
{
    constexpr uint32_t kSub = 0x80000000;
    constexpr uint32_t kGroups = 2000;
    const TemporaryFolder folder;
    const CString file = folder.File(L"many.dll");
    // Many names that share one long text, and many groups without images that share their bytes.
    const uint32_t end = 24 + 16 + kGroups * 8;
    std::string names = Directory(14, kSub | 24) + std::string(12, '\0') + Le16(kGroups) + Le16(0);
    for (uint32_t index = 0; index < kGroups; ++index) {
        names += Le32(kSub | (end + 24 + 16 + 8)) + Le32(kSub | end);
    }
    const std::string data = Directory(0, end + 24) + Le32(0x1000 + end + 40) + Le32(6) + Le32(0) +
                             Le32(0) + Le16(0) + Le16(1) + Le16(0) + Le16(0);
    WriteBytes(file, Executable(names + data + Le16(100) + std::string(200, 'x')));
    std::vector<NamedIconResource> icons;
    ASSERT_TRUE(kIcons.ReadIconsFromEXEFile(file.c_str(), icons));
    ASSERT_GT(icons.size(), 1U);
    EXPECT_LT(icons.size(), kGroups);
    EXPECT_EQ(icons[0].name, CString(100, static_cast<wchar_t>(0x7878)));
    EXPECT_NE(icons[0].icon, nullptr);
    EXPECT_EQ(icons.back().icon, nullptr);

    // A group that does not hold what it counts has no icon; a name past the end is left out.
    const std::string one = Directory(14, kSub | 24) + std::string(12, '\0') + Le16(1) + Le16(1) +
                            Le32(0xFFFFFFFF) + Le32(0) + Le32(9) + Le32(kSub | 56) +
                            Directory(0, 80) + Le32(0x1000) + Le32(6) + Le32(0) + Le32(0);
    WriteBytes(file, Executable(one));
    ASSERT_TRUE(kIcons.ReadIconsFromEXEFile(file.c_str(), icons));
    ASSERT_EQ(icons.size(), 1U);
    EXPECT_EQ(icons[0].name, L"#9");
    ShownMessages shown;
    EXPECT_FALSE(kIcons.ReadIconsFromEXEFile(folder.File(L"none").c_str(), icons));
    EXPECT_EQ(shown.Take(folder.File(L"none"), true).size(), 2U);
    EXPECT_TRUE(icons.empty());
}

bool HasSame(ByteView got, ByteView wanted)
{
    return std::equal(got.begin(), got.end(), wanted.begin(), wanted.end());
}

TEST(DamagedExecutable, EveryPrefixAndEveryWrongByteIsDefined)
{
    for (const char* library : kLibraries) {
        const std::string whole = FixtureBytes(library);
        const auto original = PeResources::Open(AsBytes(whole));
        ASSERT_TRUE(original);
        const ByteView wanted = original->Find(14, {0, L"MAINICON"}).value();
        const std::size_t needed =
            static_cast<std::size_t>(wanted.data() - AsBytes(whole).data()) + wanted.size();
        for (std::size_t length = 0; length < whole.size(); length += length < 1024 ? 1 : 5) {
            const std::vector<unsigned char> prefix = Prefix(whole, length);
            const auto resources = PeResources::Open(prefix);
            const auto found = resources ? resources->Find(14, {0, L"MAINICON"}) : std::nullopt;
            ASSERT_EQ(found.has_value(), length >= needed) << length;
            ASSERT_TRUE(!found || HasSame(*found, wanted)) << length;
        }
        std::vector<unsigned char> damaged = Prefix(whole, whole.size());
        for (std::size_t at = 0; at < damaged.size(); ++at) {
            const unsigned char kept = std::exchange(damaged[at], static_cast<unsigned char>(0xFF));
            const auto resources = PeResources::Open(damaged);
            const auto found = resources ? resources->Find(14, {0, L"MAINICON"}) : std::nullopt;
            const auto entries = found ? ReadIconGroup(*found) : std::nullopt;
            ASSERT_TRUE(!found || found->size() <= damaged.size());
            for (const IconGroupEntry& entry : entries.value_or(std::vector<IconGroupEntry>())) {
                const auto image = resources->Find(3, {entry.imageId, {}});
                ASSERT_TRUE(!image || image->size() <= damaged.size());
            }
            damaged[at] = kept;
        }
    }
}

} // namespace
