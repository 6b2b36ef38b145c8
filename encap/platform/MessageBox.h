#pragma once

#include "encap/foundation/Export.h"
#include "encap/foundation/Types.h"

#include <functional>

// The one way in which the library shows a message to the user.
namespace encap::platform {

/// A modal message with one button.
struct MessageBoxRequest {
    CString caption; ///< the file concerned, as the caller named it
    CString text;
    bool owned = false; ///< the box belongs to the application's main window; else to none
};

using MessageBoxHook = std::function<void(const MessageBoxRequest&)>;

/// Sends the process's messages to the hook from now on and gives back the hook before it. An empty
/// hook restores the platform's own way: a message box on Windows, nothing shown elsewhere.
/// Threads: callable on any thread at any time. The hook runs on the thread whose operation failed,
/// without a lock held, so it may run on several threads at once and may set another hook. What it
/// throws is dropped, std::bad_alloc excepted.
ENCAP_API MessageBoxHook SetMessageBoxHook(MessageBoxHook hook);

/// Shows a message through the hook, or in the platform's own way; returns once it is closed.
void ShowMessageBox(const MessageBoxRequest& request);

/// The platform's own way, whatever the hook is.
void ShowSystemMessageBox(const MessageBoxRequest& request);

} // namespace encap::platform
