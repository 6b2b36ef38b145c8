#include "cli/icon/HalfBlocks.h"

#include <string_view>

namespace encap::cli {
namespace {

constexpr std::string_view kUpperHalf = "\xE2\x96\x80"; // U+2580
constexpr std::string_view kLowerHalf = "\xE2\x96\x84"; // U+2584
constexpr std::string_view kReset = "\x1B[0m";

/// A colour, or nothing where the terminal's own background shows.
using Shown = std::optional<uint32_t>;

Shown LaidOver(uint32_t pixel, std::optional<uint32_t> background)
{
    const uint32_t alpha = pixel >> 24;
    if (alpha == 0 && !background) {
        return std::nullopt;
    }
    uint32_t colour = 0;
    for (uint32_t shift = 0; shift < 24; shift += 8) {
        const uint32_t above = (pixel >> shift & 0xFF) * alpha;
        const uint32_t below = (background.value_or(0) >> shift & 0xFF) * (255 - alpha);
        colour |= (above + below + 127) / 255 << shift;
    }
    return colour;
}

/// One line of a drawing; a colour is only told where it changes.
class Line {
public:
    explicit Line(std::string& text) : m_text(text) {}

    void Add(const Shown& upper, const Shown& lower)
    {
        if (!upper && !lower) {
            SetBackground(std::nullopt);
            m_text += ' ';
            return;
        }
        SetBackground(upper ? lower : std::nullopt);
        SetForeground(upper ? *upper : *lower);
        m_text += upper ? kUpperHalf : kLowerHalf;
    }

    void End()
    {
        m_text += kReset;
        m_text += '\n';
    }

private:
    void SetForeground(uint32_t colour)
    {
        if (m_foreground != Shown(colour)) {
            AppendColour("\x1B[38;2;", colour);
            m_foreground = colour;
        }
    }
    void SetBackground(const Shown& colour)
    {
        if (m_background == colour) {
            return;
        }
        if (colour) {
            AppendColour("\x1B[48;2;", *colour);
        } else {
            m_text += "\x1B[49m";
        }
        m_background = colour;
    }
    void AppendColour(std::string_view start, uint32_t colour)
    {
        m_text += start;
        m_text += std::to_string(colour >> 16 & 0xFF);
        m_text += ';';
        m_text += std::to_string(colour >> 8 & 0xFF);
        m_text += ';';
        m_text += std::to_string(colour & 0xFF);
        m_text += 'm';
    }

    std::string& m_text;
    Shown m_foreground;
    Shown m_background;
};

} // namespace

std::string DrawHalfBlocks(const std::vector<uint32_t>& pixels, uint32_t width, uint32_t height,
                           std::optional<uint32_t> background)
{
    std::string text;
    const auto at = [&](uint32_t x, uint32_t y) {
        return y < height ? LaidOver(pixels[std::size_t{y} * width + x], background) : Shown();
    };
    for (uint32_t y = 0; y < height; y += 2) {
        Line line(text);
        for (uint32_t x = 0; x < width; ++x) {
            line.Add(at(x, y), at(x, y + 1));
        }
        line.End();
    }
    return text;
}

} // namespace encap::cli
