#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

// The colour tables that a bitmap gets when its own does not fit. Entries are 0x00RRGGBB.
namespace encap {

inline constexpr std::array<uint32_t, 2> kBlackAndWhite{0x000000, 0xFFFFFF};

/// The customary table of 4-bit bitmaps (the 16 VGA colours).
inline constexpr std::array<uint32_t, 16> kDefaultPalette16{
    0x000000, 0x800000, 0x008000, 0x808000, 0x000080, 0x800080, 0x008080, 0x808080,
    0xC0C0C0, 0xFF0000, 0x00FF00, 0xFFFF00, 0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF,
};

/// The 20 colours that every 256-colour display reserves.
inline constexpr std::array<uint32_t, 20> kReservedColours{
    0x000000, 0x800000, 0x008000, 0x808000, 0x000080, 0x800080, 0x008080,
    0xC0C0C0, 0xC0DCC0, 0xA6CAF0, 0xFFFBF0, 0xA0A0A4, 0x808080, 0xFF0000,
    0x00FF00, 0xFFFF00, 0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF,
};

/// The reserved colours, then a cube of 6 x 6 x 6 colours at levels of 51 (blue varies fastest),
/// then black up to 256 entries.
inline constexpr std::array<uint32_t, 256> kHalftonePalette256 = [] {
    std::array<uint32_t, 256> palette{};
    std::size_t next = 0;
    for (const uint32_t colour : kReservedColours) {
        palette[next++] = colour;
    }
    for (uint32_t index = 0; index < 6 * 6 * 6; ++index) {
        const uint32_t red = index / 36 * 51;
        const uint32_t green = index / 6 % 6 * 51;
        const uint32_t blue = index % 6 * 51;
        palette[next++] = red << 16 | green << 8 | blue;
    }
    return palette;
}();

} // namespace encap
