#pragma once

#include <array>
#include <cstdint>

namespace encap::platform {

/// A globally unique identifier in its four customary fields.
struct Guid {
    uint32_t data1 = 0;
    uint16_t data2 = 0;
    uint16_t data3 = 0;
    std::array<uint8_t, 8> data4{};

    friend bool operator==(const Guid&, const Guid&) = default;
};

/// A random identifier (version 4); all zero when the system has no randomness to give.
[[nodiscard]] Guid CreateGuid();

} // namespace encap::platform
