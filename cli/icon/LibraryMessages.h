#pragma once

#include "encap/platform/MessageBox.h"

#include <atomic>

namespace encap::cli {

class Console;

/// Ends an action whose failure the library has told already.
struct MessagesShown {};

/// Prints what the library shows in message boxes while the object lives, each as a line of the
/// file and the text. Refers to the console.
class LibraryMessages {
public:
    explicit LibraryMessages(Console& console);
    ~LibraryMessages();
    LibraryMessages(const LibraryMessages&) = delete;
    LibraryMessages& operator=(const LibraryMessages&) = delete;

    /// Ends the action: throws MessagesShown when there were messages since the last call, else a
    /// FileError with the reason.
    [[noreturn]] void Fail(const CString& path, std::wstring_view reason);

private:
    std::atomic<int> m_count = 0;
    platform::MessageBoxHook m_previous;
};

} // namespace encap::cli
