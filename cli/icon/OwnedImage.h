#pragma once

#include "encap/icons/IconRecords.h"

#include <cstdlib>
#include <utility>

namespace encap::cli {

/// One image that frees its bits.
class OwnedImage {
public:
    OwnedImage() = default;
    /// An empty image of this format, to be filled.
    OwnedImage(uint32_t width, uint32_t height, uint32_t bitsPerPixel)
    {
        m_image.width = width;
        m_image.height = height;
        m_image.colours = bitsPerPixel;
    }
    ~OwnedImage() { std::free(std::exchange(m_image.bits, nullptr)); }
    OwnedImage(OwnedImage&& other) noexcept : m_image(std::exchange(other.m_image, {})) {}
    OwnedImage& operator=(OwnedImage&& other) noexcept
    {
        std::swap(m_image, other.m_image);
        return *this;
    }
    OwnedImage(const OwnedImage&) = delete;
    OwnedImage& operator=(const OwnedImage&) = delete;

    [[nodiscard]] ICONIMAGE& Image() { return m_image; }
    [[nodiscard]] const ICONIMAGE& Image() const { return m_image; }
    /// The image, whose bits are the caller's from now on.
    [[nodiscard]] ICONIMAGE Release() { return std::exchange(m_image, {}); }

private:
    ICONIMAGE m_image{};
};

} // namespace encap::cli
