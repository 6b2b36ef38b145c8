#pragma once

#include "encap/platform/Encoding.h"

#include <stdexcept>
#include <string_view>

namespace encap::cli {

/// What the program answers its caller with.
enum class ExitStatus : int {
    Done = 0,     ///< done, and nothing is wrong
    Findings = 1, ///< done, and something was found wrong
    BadUsage = 2,
    Failed = 3, ///< a file cannot be read, parsed or written, or is not what it should be
};

/// Ends a command: RunCommand prints the message, one sentence in UTF-8, as one line and gives the
/// status.
class CommandError : public std::runtime_error {
public:
    CommandError(ExitStatus status, std::wstring_view message)
        : std::runtime_error(platform::WideToUtf8(message)), m_status(status)
    {
    }

    [[nodiscard]] ExitStatus Status() const { return m_status; }

private:
    ExitStatus m_status;
};

/// A wrong argument.
class UsageError : public CommandError {
public:
    explicit UsageError(std::wstring_view message) : CommandError(ExitStatus::BadUsage, message) {}
};

/// A file that cannot be read or written or is not what it should be; the message begins with it.
class FileError : public CommandError {
public:
    FileError(std::wstring_view path, std::wstring_view reason)
        : CommandError(ExitStatus::Failed, std::wstring(path) + L": " + std::wstring(reason))
    {
    }
};

} // namespace encap::cli
