#include "encap/platform/Clipboard.h"

#include <mutex>
#include <new>
#include <utility>

namespace encap::platform {
namespace {

struct HookSlot {
    std::mutex guard;
    ClipboardHook hook;
};

HookSlot& Slot()
{
    static HookSlot slot;
    return slot;
}

ClipboardHook CurrentHook()
{
    HookSlot& slot = Slot();
    const std::lock_guard lock(slot.guard);
    return slot.hook;
}

template <class Function, class Bitmap>
bool CallGuarded(const Function& function, Bitmap& bitmap)
{
    try {
        return function(bitmap);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        return false;
    }
}

} // namespace

ClipboardHook SetClipboardHook(ClipboardHook hook)
{
    HookSlot& slot = Slot();
    const std::lock_guard lock(slot.guard);
    return std::exchange(slot.hook, std::move(hook));
}

bool OfferClipboardBitmap(const ClipboardBitmap& bitmap)
{
    const ClipboardHook hook = CurrentHook();
    return hook.offer ? CallGuarded(hook.offer, bitmap) : OfferSystemClipboardBitmap(bitmap);
}

bool TakeClipboardBitmap(ClipboardBitmap& bitmap)
{
    const ClipboardHook hook = CurrentHook();
    return hook.take ? CallGuarded(hook.take, bitmap) : TakeSystemClipboardBitmap(bitmap);
}

} // namespace encap::platform
