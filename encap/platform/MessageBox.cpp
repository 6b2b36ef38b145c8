#include "encap/platform/MessageBox.h"

#include <mutex>
#include <new>
#include <utility>

namespace encap::platform {
namespace {

struct HookSlot {
    std::mutex guard;
    MessageBoxHook hook;
};

HookSlot& Slot()
{
    static HookSlot slot;
    return slot;
}

MessageBoxHook CurrentHook()
{
    HookSlot& slot = Slot();
    const std::lock_guard lock(slot.guard);
    return slot.hook;
}

} // namespace

MessageBoxHook SetMessageBoxHook(MessageBoxHook hook)
{
    HookSlot& slot = Slot();
    const std::lock_guard lock(slot.guard);
    return std::exchange(slot.hook, std::move(hook));
}

void ShowMessageBox(const MessageBoxRequest& request)
{
    const MessageBoxHook hook = CurrentHook();
    if (!hook) {
        ShowSystemMessageBox(request);
        return;
    }
    try {
        hook(request);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        // A message that could not be shown must not change the operation's result.
    }
}

} // namespace encap::platform
