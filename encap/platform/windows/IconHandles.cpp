#include "encap/platform/IconHandles.h"

#include "encap/platform/Files.h"
#include "encap/platform/windows/NativePath.h"
#include "encap/platform/windows/WindowsHeaders.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <type_traits>

namespace {

struct BitmapDeleter {
    void operator()(HBITMAP bitmap) const { DeleteObject(bitmap); }
};

struct ContextDeleter {
    void operator()(HDC context) const { DeleteDC(context); }
};

template <class Handle, class Deleter>
using Owned = std::unique_ptr<std::remove_pointer_t<Handle>, Deleter>;
using OwnedBitmap = Owned<HBITMAP, BitmapDeleter>;
using OwnedContext = Owned<HDC, ContextDeleter>;

constexpr uint32_t kAlpha = 0xFF000000;

/// Rows of 0xAARRGGBB values, the topmost first.
BITMAPINFO TopDownInfo(int32_t width, int32_t height)
{
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    return info;
}

bool ReadPixels(HBITMAP bitmap, int32_t width, int32_t height, std::vector<uint32_t>& pixels)
{
    const OwnedContext context(CreateCompatibleDC(nullptr));
    BITMAPINFO info = TopDownInfo(width, height);
    pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    return GetDIBits(context.get(), bitmap, 0, static_cast<UINT>(height), pixels.data(), &info,
                     DIB_RGB_COLORS) == height;
}

/// An icon without alpha says in its mask which pixels are seen: the black ones.
void TakeAlphaFromMask(const std::vector<uint32_t>& mask, std::vector<uint32_t>& pixels)
{
    const bool hasAlpha = std::any_of(pixels.begin(), pixels.end(),
                                      [](uint32_t pixel) { return (pixel & kAlpha) != 0; });
    for (std::size_t i = 0; !hasAlpha && i < pixels.size(); ++i) {
        pixels[i] |= (mask[i] & ~kAlpha) == 0 ? kAlpha : 0;
    }
}

/// The handle of a loaded module is the address it lies at; that of a file which is open as data
/// has one of these bits set besides.
constexpr uintptr_t kDataBits = 3;

bool IsOpenedAsData(HINSTANCE executable)
{
    return (reinterpret_cast<uintptr_t>(executable) & kDataBits) != 0;
}

} // namespace

bool GetIconPixels(HICON icon, uint32_t& width, uint32_t& height, std::vector<uint32_t>& bgra)
{
    ICONINFO info{};
    if (icon == nullptr || GetIconInfo(icon, &info) == 0) {
        return false;
    }
    const OwnedBitmap colour(info.hbmColor);
    const OwnedBitmap mask(info.hbmMask);
    BITMAP size{};
    // An icon in two colours has its picture below the mask, in one bitmap; none is made today.
    if (colour == nullptr || GetObjectW(colour.get(), sizeof size, &size) == 0) {
        return false;
    }
    std::vector<uint32_t> pixels;
    std::vector<uint32_t> maskPixels;
    if (!ReadPixels(colour.get(), size.bmWidth, size.bmHeight, pixels) ||
        !ReadPixels(mask.get(), size.bmWidth, size.bmHeight, maskPixels)) {
        return false;
    }
    TakeAlphaFromMask(maskPixels, pixels);
    width = static_cast<uint32_t>(size.bmWidth);
    height = static_cast<uint32_t>(size.bmHeight);
    bgra = std::move(pixels);
    return true;
}

void ReleaseIcon(HICON icon)
{
    if (icon != nullptr) {
        DestroyIcon(icon);
    }
}

HINSTANCE OpenExecutable(const wchar_t* file)
{
    CString native;
    if (file == nullptr || !encap::platform::NativePath(file, native)) {
        return nullptr;
    }
    return LoadLibraryExW(native.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
}

void CloseExecutable(HINSTANCE executable)
{
    if (executable != nullptr) {
        FreeLibrary(executable);
    }
}

namespace encap::platform {

HICON CreateIconHandle(uint32_t width, uint32_t height, std::vector<uint32_t> bgra)
{
    constexpr uint32_t kMost = std::numeric_limits<int16_t>::max();
    if (width > kMost || height > kMost) {
        return nullptr;
    }
    const BITMAPINFO info = TopDownInfo(static_cast<int32_t>(width), static_cast<int32_t>(height));
    void* bits = nullptr;
    const OwnedBitmap colour(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    // The alpha of the picture says what is seen. Where it is zero throughout, the mask does: all
    // ones, nothing.
    const bool isUnseen =
        std::all_of(bgra.begin(), bgra.end(), [](uint32_t pixel) { return (pixel & kAlpha) == 0; });
    const std::vector<unsigned char> maskBits((width + 15) / 16 * 2 * std::size_t{height},
                                              isUnseen ? 0xFF : 0);
    const OwnedBitmap mask(
        CreateBitmap(static_cast<int>(width), static_cast<int>(height), 1, 1, maskBits.data()));
    if (colour == nullptr || mask == nullptr) {
        return nullptr;
    }
    std::copy(bgra.begin(), bgra.end(), static_cast<uint32_t*>(bits));
    ICONINFO icon{TRUE, 0, 0, mask.get(), colour.get()};
    return CreateIconIndirect(&icon);
}

std::string_view ExecutableContent(HINSTANCE executable, std::string& storage)
{
    if (executable == nullptr) {
        return {};
    }
    if (!IsOpenedAsData(executable)) {
        return ReadWholeFile(FileOfModule(executable), storage) ? std::string_view(storage)
                                                                : std::string_view();
    }
    // The file as it is, in one piece, with zeros up to the end of its last page.
    const auto address = reinterpret_cast<uintptr_t>(executable) & ~kDataBits;
    MEMORY_BASIC_INFORMATION region{};
    const auto* const content = reinterpret_cast<const char*>(address);
    if (VirtualQuery(content, &region, sizeof region) == 0) {
        return {};
    }
    return {content, region.RegionSize};
}

} // namespace encap::platform
