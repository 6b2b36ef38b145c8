#pragma once

#include "encap/foundation/Export.h"

#include <functional>
#include <vector>

// The clipboard, as far as the library uses it: one device-independent bitmap.
namespace encap::platform {

/// A packed bitmap as the clipboard's bitmap format holds it: a bitmap information header of 40
/// bytes or more, channel masks or colour table, rows. More bytes may follow the rows.
using ClipboardBitmap = std::vector<unsigned char>;

/// Two functions that connect the library to a clipboard. Both or none are set.
struct ClipboardHook {
    /// Offers the bitmap in place of what the clipboard held; an empty bitmap only empties the
    /// clipboard. False when the clipboard cannot be had.
    std::function<bool(const ClipboardBitmap& bitmap)> offer;
    /// Takes a copy of the bitmap on the clipboard; false when there is none. The bytes come from
    /// another program: nothing is assumed of them.
    std::function<bool(ClipboardBitmap& bitmap)> take;
};

/// Uses the hook in place of the platform's clipboard from now on and gives back the hook before
/// it. An empty hook restores the platform's: the system clipboard on Windows, a store inside the
/// process elsewhere.
/// Threads: callable on any thread at any time. The hook's functions run on the calling thread of
/// the operation, without a lock held. What they throw counts as false, std::bad_alloc excepted.
ENCAP_API ClipboardHook SetClipboardHook(ClipboardHook hook);

/// As the functions of a hook, through the hook or the platform's clipboard.
[[nodiscard]] ENCAP_API bool OfferClipboardBitmap(const ClipboardBitmap& bitmap);
[[nodiscard]] ENCAP_API bool TakeClipboardBitmap(ClipboardBitmap& bitmap);

/// Whether the platform's clipboard is the one that other programs use, as on Windows; a store
/// inside the process is not, and a host that wants more sets a hook.
[[nodiscard]] ENCAP_API bool SystemClipboardIsShared();

/// The platform's own clipboard, whatever the hook is.
[[nodiscard]] bool OfferSystemClipboardBitmap(const ClipboardBitmap& bitmap);
[[nodiscard]] bool TakeSystemClipboardBitmap(ClipboardBitmap& bitmap);

} // namespace encap::platform
