#pragma once

#include "encap/platform/windows/WindowsHeaders.h"

#include <utility>

namespace encap::platform {

/// An open handle of the system, closed with the object.
class OwnedHandle {
public:
    OwnedHandle() = default;
    explicit OwnedHandle(HANDLE handle) : m_handle(handle) {}
    OwnedHandle(OwnedHandle&& other) noexcept
        : m_handle(std::exchange(other.m_handle, INVALID_HANDLE_VALUE))
    {
    }
    ~OwnedHandle() { Close(); }
    OwnedHandle& operator=(OwnedHandle&&) = delete;

    [[nodiscard]] bool IsOpen() const { return m_handle != INVALID_HANDLE_VALUE; }
    [[nodiscard]] HANDLE Get() const { return m_handle; }
    bool Close()
    {
        const HANDLE handle = std::exchange(m_handle, INVALID_HANDLE_VALUE);
        return handle == INVALID_HANDLE_VALUE || CloseHandle(handle) != 0;
    }

private:
    HANDLE m_handle = INVALID_HANDLE_VALUE;
};

} // namespace encap::platform
