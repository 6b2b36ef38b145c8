#pragma once

#include "encap/icons/PixelConversion.h"
#include "encap/platform/IconHandles.h"

#include <array>
#include <functional>
#include <vector>

#include <gtest/gtest.h>

// The pictures of the fixtures, as 0xAARRGGBB at a place.
using Picture = std::function<uint32_t(uint32_t x, uint32_t y)>;

inline constexpr std::array<uint32_t, 16> kVga{
    0x000000, 0x800000, 0x008000, 0x808000, 0x000080, 0x800080, 0x008080, 0x808080,
    0xC0C0C0, 0xFF0000, 0x00FF00, 0xFFFF00, 0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF};

inline uint32_t Checks(uint32_t x, uint32_t y)
{
    return (x / 4 + y / 4) % 2 != 0 ? 0xFFFFFFFF : 0xFF000000;
}

inline uint32_t Vga(uint32_t x, uint32_t y)
{
    return (x == 0 && y < 8 ? 0 : 0xFF000000) | kVga[(x + y) % 16];
}

inline uint32_t Ramp(uint32_t x, uint32_t y)
{
    const uint32_t value = (x * 16 + y) & 255;
    return 0xFF000000 | value << 16 | (255 - value) << 8 | (value ^ 0x55);
}

inline uint32_t Grad(uint32_t x, uint32_t y)
{
    return 0xFF000000 | (x * 16 & 255) << 16 | (y * 16 & 255) << 8 | ((x ^ y) * 16 & 255);
}

inline uint32_t Glass(uint32_t x, uint32_t y)
{
    return (Grad(x, y) & 0xFFFFFF) | (255 - (x * 8 & 127)) << 24;
}

/// Colours that the default table of 8 bits holds.
inline uint32_t Cube(uint32_t x, uint32_t y)
{
    return 0xFF000000 | x % 6 * 51 << 16 | y % 6 * 51 << 8 | (x + y) % 6 * 51;
}

/// Colours that 5 bits a channel hold.
inline uint32_t FiveBits(uint32_t x, uint32_t y)
{
    const auto level = [](uint32_t value) { return (value % 32 * 255 + 15) / 31; };
    return 0xFF000000 | level(x * 2) << 16 | level(y * 2 + 1) << 8 | level(x + y);
}

inline Picture Opaque(const Picture& picture)
{
    return [picture](uint32_t x, uint32_t y) { return picture(x, y) | 0xFF000000; };
}

inline encap::PixelGrid Draw(const Picture& picture, uint32_t width, uint32_t height)
{
    encap::PixelGrid grid{width, height, {}};
    for (uint32_t y = 0; y < height; ++y) {
        for (uint32_t x = 0; x < width; ++x) {
            grid.pixels.push_back(picture(x, y));
        }
    }
    return grid;
}

/// The picture as a packed 32-bit bitmap.
inline std::vector<unsigned char> PackPicture(const Picture& picture, uint32_t width,
                                              uint32_t height)
{
    return encap::PackPixels(Draw(picture, width, height));
}

/// Expects the handle's pixels to be the picture; colours under full transparency do not count.
inline void ExpectPicture(HICON icon, uint32_t width, uint32_t height, const Picture& picture)
{
    uint32_t gotWidth = 0;
    uint32_t gotHeight = 0;
    std::vector<uint32_t> pixels;
    ASSERT_TRUE(GetIconPixels(icon, gotWidth, gotHeight, pixels));
    ASSERT_EQ(gotWidth, width);
    ASSERT_EQ(gotHeight, height);
    for (uint32_t y = 0; y < height; ++y) {
        for (uint32_t x = 0; x < width; ++x) {
            const uint32_t got = pixels[y * width + x];
            const uint32_t wanted = picture(x, y);
            const bool same = got == wanted || ((got | wanted) & 0xFF000000) == 0;
            ASSERT_TRUE(same) << std::hex << got << " not " << wanted << std::dec << " at " << x
                              << "," << y;
        }
    }
}
