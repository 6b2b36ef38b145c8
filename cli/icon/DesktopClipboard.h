#pragma once

#include "encap/foundation/Types.h"
#include "encap/platform/Clipboard.h"

#include <string>
#include <string_view>

namespace encap::cli {

/// Connects the library's clipboard while it lives to that of the desktop, where the platform's own
/// one is not it: through wl-copy and wl-paste when there is a Wayland display, else, or when they
/// are not installed, through xclip when there is an X display. Bitmaps go as BMP files of the type
/// image/bmp. What is offered stays on the clipboard when the program ends: the helper keeps it.
class DesktopClipboard {
public:
    /// Throws CommandError without a display.
    DesktopClipboard();
    ~DesktopClipboard();
    DesktopClipboard(const DesktopClipboard&) = delete;
    DesktopClipboard& operator=(const DesktopClipboard&) = delete;

    /// Why the last operation failed; empty when that is not known.
    [[nodiscard]] const CString& Failure() const { return m_failure; }

private:
    bool Offer(const platform::ClipboardBitmap& bitmap);
    bool Take(platform::ClipboardBitmap& bitmap);
    bool RunHelper(bool isCopy, std::string_view input, std::string& output);

    bool m_hasWayland = false;
    bool m_hasX = false;
    bool m_isConnected = false;
    CString m_failure;
    platform::ClipboardHook m_previous;
};

} // namespace encap::cli
