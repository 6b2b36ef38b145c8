#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace encap::cli {

/// The pixels (0xAARRGGBB, the topmost row first) as text for a terminal with 24-bit colours: a
/// character shows two pixels, one above the other, as a half block (U+2580, U+2584) between its
/// two colours; each line ends with the terminal's own colours. Pixels are laid over the background
/// (0x00RRGGBB); without one, transparent pixels show the terminal's and others lie over black.
[[nodiscard]] std::string DrawHalfBlocks(const std::vector<uint32_t>& pixels, uint32_t width,
                                         uint32_t height, std::optional<uint32_t> background);

} // namespace encap::cli
