#include "encap/platform/Clipboard.h"

#include <mutex>

namespace encap::platform {
namespace {

// Like a system clipboard, this one outlives every object that puts something on it.
struct Store {
    std::mutex guard;
    ClipboardBitmap bitmap;
};

Store& ProcessStore()
{
    static Store store;
    return store;
}

} // namespace

bool SystemClipboardIsShared()
{
    return false;
}

bool OfferSystemClipboardBitmap(const ClipboardBitmap& bitmap)
{
    Store& store = ProcessStore();
    const std::lock_guard lock(store.guard);
    store.bitmap = bitmap;
    return true;
}

bool TakeSystemClipboardBitmap(ClipboardBitmap& bitmap)
{
    Store& store = ProcessStore();
    const std::lock_guard lock(store.guard);
    bitmap = store.bitmap;
    return !bitmap.empty();
}

} // namespace encap::platform
