#include "encap/platform/Clipboard.h"
#include "encap/platform/Files.h"
#include "encap/platform/IconHandles.h"
#include "encap/platform/Locale.h"
#include "encap/platform/windows/WindowsHeaders.h"
#include "tests/platform/TemporaryFolder.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace encap::platform {
namespace {

TEST(WindowsLocale, TheUsersSettingsDecide)
{
    wchar_t before[8] = {};
    ASSERT_GT(GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, before, 8), 0);
    for (const wchar_t* separator : {L",", L"."}) {
        ASSERT_NE(SetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, separator), 0);
        EXPECT_EQ(UserDecimalSeparator(), separator[0]);
    }
    SetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, before);
    EXPECT_EQ(UserLocaleId(), static_cast<int32_t>(GetUserDefaultLCID()));
}

TEST(WindowsClipboard, ABitmapGoesThroughTheSystem)
{
    ClipboardBitmap bitmap(44, 7);
    bitmap[0] = 40;
    ASSERT_TRUE(OfferSystemClipboardBitmap(bitmap));
    ASSERT_NE(OpenClipboard(nullptr), 0);
    EXPECT_NE(IsClipboardFormatAvailable(CF_DIB), 0);
    CloseClipboard();
    ClipboardBitmap taken;
    ASSERT_TRUE(TakeSystemClipboardBitmap(taken));
    ASSERT_GE(taken.size(), bitmap.size());
    EXPECT_TRUE(std::equal(bitmap.begin(), bitmap.end(), taken.begin()));

    ASSERT_TRUE(OfferSystemClipboardBitmap({}));
    EXPECT_FALSE(TakeSystemClipboardBitmap(taken));
}

TEST(WindowsIcons, PixelsComeBackFromTheSystemsHandles)
{
    const std::vector<uint32_t> pictures[] = {
        {0xFF102030, 0x80FFFFFF, 0x00000000, 0xFF0000FF, 0x01020304, 0xFFFFFFFF},
        std::vector<uint32_t>(6, 0), // nothing to be seen
    };
    for (const std::vector<uint32_t>& pixels : pictures) {
        const HICON icon = CreateIconHandle(3, 2, pixels);
        ASSERT_NE(icon, nullptr);
        ICONINFO info{};
        ASSERT_NE(GetIconInfo(icon, &info), 0);
        EXPECT_NE(info.fIcon, 0);
        DeleteObject(info.hbmColor);
        DeleteObject(info.hbmMask);
        uint32_t width = 0;
        uint32_t height = 0;
        std::vector<uint32_t> read;
        ASSERT_TRUE(GetIconPixels(icon, width, height, read));
        EXPECT_EQ(width, 3U);
        EXPECT_EQ(height, 2U);
        EXPECT_EQ(read, pixels);
        ReleaseIcon(icon);
    }
}

TEST(WindowsModules, BothKindsOfHandleGiveTheFile)
{
    wchar_t path[MAX_PATH] = {};
    ASSERT_GT(GetModuleFileNameW(nullptr, path, MAX_PATH), 0U);
    std::string file;
    ASSERT_TRUE(ReadWholeFile(path, file));

    std::string storage;
    EXPECT_TRUE(ExecutableContent(GetModuleHandleW(nullptr), storage) == file);
    const TemporaryFolder folder;
    ASSERT_TRUE(ReplaceFileContent(folder.File(L"copy.exe"), file));
    const HINSTANCE opened = OpenExecutable(folder.File(L"copy.exe").c_str());
    ASSERT_NE(opened, nullptr);
    EXPECT_TRUE(ExecutableContent(opened, storage).substr(0, file.size()) == file);
    CloseExecutable(opened);
}

} // namespace
} // namespace encap::platform
