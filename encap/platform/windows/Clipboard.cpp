#include "encap/platform/Clipboard.h"

#include "encap/platform/windows/MainWindow.h"

#include <cstring>

namespace encap::platform {
namespace {

/// The clipboard, open while the object lives.
class OpenedClipboard {
public:
    explicit OpenedClipboard(HWND owner) : m_isOpen(OpenClipboard(owner) != 0) {}
    ~OpenedClipboard()
    {
        if (m_isOpen) {
            CloseClipboard();
        }
    }
    OpenedClipboard(const OpenedClipboard&) = delete;
    OpenedClipboard& operator=(const OpenedClipboard&) = delete;

    [[nodiscard]] bool IsOpen() const { return m_isOpen; }

private:
    bool m_isOpen;
};

/// The window that the clipboard belongs to meanwhile: the application's main window, and where it
/// has none one of our own that is never shown, since without any nothing can be offered.
class Owner {
public:
    Owner() : m_window(MainWindow())
    {
        if (m_window == nullptr) {
            m_own = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                    nullptr, nullptr);
            m_window = m_own;
        }
    }
    ~Owner()
    {
        if (m_own != nullptr) {
            DestroyWindow(m_own);
        }
    }
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;

    [[nodiscard]] HWND Window() const { return m_window; }

private:
    HWND m_window;
    HWND m_own = nullptr;
};

/// Movable global memory with a copy of the bytes; null when there is none.
HGLOBAL GlobalCopy(const ClipboardBitmap& bitmap)
{
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bitmap.size());
    void* const place = memory != nullptr ? GlobalLock(memory) : nullptr;
    if (place == nullptr) {
        GlobalFree(memory);
        return nullptr;
    }
    std::memcpy(place, bitmap.data(), bitmap.size());
    GlobalUnlock(memory);
    return memory;
}

} // namespace

bool SystemClipboardIsShared()
{
    return true;
}

bool OfferSystemClipboardBitmap(const ClipboardBitmap& bitmap)
{
    const Owner owner;
    const OpenedClipboard clipboard(owner.Window());
    if (!clipboard.IsOpen() || EmptyClipboard() == 0) {
        return false;
    }
    if (bitmap.empty()) {
        return true;
    }
    const HGLOBAL memory = GlobalCopy(bitmap);
    // What the clipboard took is the system's from then on.
    if (memory != nullptr && SetClipboardData(CF_DIB, memory) == nullptr) {
        GlobalFree(memory);
        return false;
    }
    return memory != nullptr;
}

bool TakeSystemClipboardBitmap(ClipboardBitmap& bitmap)
{
    const OpenedClipboard clipboard(nullptr);
    const HANDLE memory = clipboard.IsOpen() ? GetClipboardData(CF_DIB) : nullptr;
    const void* const place = memory != nullptr ? GlobalLock(memory) : nullptr;
    if (place == nullptr) {
        return false;
    }
    bitmap.resize(GlobalSize(memory));
    std::memcpy(bitmap.data(), place, bitmap.size());
    GlobalUnlock(memory);
    return !bitmap.empty();
}

} // namespace encap::platform
