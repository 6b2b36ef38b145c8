#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/Options.h"
#include "cli/icon/HalfBlocks.h"
#include "cli/icon/IconActions.h"
#include "cli/icon/ImageConversion.h"
#include "cli/icon/ImageOutput.h"
#include "cli/icon/LibraryMessages.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace encap::cli {
namespace {

class ShowAction : public Command {
public:
    void Declare(Options& options) override;
    ExitStatus Run(Console& console) override;

private:
    void RequireColours(const Console& console) const;
    [[nodiscard]] std::optional<uint32_t> Background() const;

    CString m_path;
    ImageChoice m_choice;
    std::optional<CString> m_background;
    bool m_isForced = false;
};

void ShowAction::Declare(Options& options)
{
    options.Argument(m_path, "FILE", "An ICO, BMP or PNG file, or an executable or library");
    m_choice.DeclareIcon(options);
    m_choice.DeclareImage(options);
    options.Text(
        m_background, "--background", "RRGGBB",
        "Lay the image over this colour (default: transparent pixels show the terminal's)");
    options.Flag(m_isForced, "--force",
                 "Draw where standard output is no terminal, or tells of no 24-bit colours, too");
    options.Footer("Draws the largest and deepest image that fits the terminal, or a larger one "
                   "made smaller where\nthose that fit are small. A character shows two pixels.");
}

/// Terminals that can say so in this variable.
bool TellsOfTrueColour()
{
    const char* const value = std::getenv("COLORTERM");
    const std::string_view text = value != nullptr ? value : "";
    return text == "truecolor" || text == "24bit";
}

void ShowAction::RequireColours(const Console& console) const
{
    if (m_isForced) {
        return;
    }
    if (!console.OutputTerminal()) {
        throw CommandError(ExitStatus::Failed,
                           L"standard output is no terminal; --force draws all the same");
    }
    if (!TellsOfTrueColour()) {
        throw CommandError(ExitStatus::Failed,
                           L"the terminal does not tell that it has 24-bit colours (COLORTERM is "
                           L"neither truecolor nor 24bit); --force draws all the same");
    }
}

std::optional<uint32_t> ShowAction::Background() const
{
    if (!m_background) {
        return std::nullopt;
    }
    constexpr std::wstring_view kDigits = L"0123456789abcdef0123456789ABCDEF";
    uint32_t colour = 0;
    for (const wchar_t character : *m_background) {
        const std::size_t digit = kDigits.find(character);
        if (digit == std::wstring_view::npos || m_background->size() != 6) {
            throw UsageError(L"--background takes a colour of six digits, as ffffff, not '" +
                             *m_background + L'\'');
        }
        colour = colour << 4 | static_cast<uint32_t>(digit % 16);
    }
    return colour;
}

/// The largest size of the image's proportions that fits.
ImageSize FittingSize(const ICONIMAGE& image, const ImageSize& room)
{
    const auto scaled = [](uint32_t side, uint32_t to, uint32_t from) {
        return static_cast<uint32_t>(std::max<uint64_t>(uint64_t{side} * to / from, 1));
    };
    ImageSize size = SizeOf(image);
    if (size.width > room.width) {
        size = {room.width, scaled(size.height, room.width, size.width)};
    }
    if (size.height > room.height) {
        size = {scaled(size.width, room.height, size.height), room.height};
    }
    return size;
}

uint64_t PixelCountOf(const ImageSize& size)
{
    return uint64_t{size.width} * size.height;
}

/// The largest whole image that fits as it is; null when there is none.
const ICONIMAGE* LargestFitting(const std::vector<ICONIMAGE*>& images, const ImageSize& room)
{
    std::vector<ICONIMAGE*> fitting;
    std::copy_if(images.begin(), images.end(), std::back_inserter(fitting),
                 [&room](const ICONIMAGE* image) {
                     return image->width <= room.width && image->height <= room.height;
                 });
    std::stable_sort(fitting.begin(), fitting.end(), IsBetterImage);
    const auto whole = std::find_if(fitting.begin(), fitting.end(),
                                    [](const ICONIMAGE* image) { return IsWholeImage(*image); });
    return whole != fitting.end() ? *whole : nullptr;
}

/// That one, unless a larger one, made smaller, shows more than four times as many pixels.
const ICONIMAGE& ImageToShow(const std::vector<ICONIMAGE*>& images, const ImageSize& room)
{
    const ICONIMAGE& larger = BestFor(images, room);
    const ICONIMAGE* const fitting = LargestFitting(images, room);
    const uint64_t shown = PixelCountOf(FittingSize(larger, room));
    return fitting != nullptr && PixelCount(*fitting) * 4 >= shown ? *fitting : larger;
}

/// The pixels of the image at a size. Throws FileError when it is damaged.
std::vector<uint32_t> PixelsAt(const ICONIMAGE& image, const ImageSize& size, const CString& path)
{
    OwnedImage scaled(size.width, size.height, 32);
    const bool isScaled = CIcons().ConvertIconImage(&scaled.Image(), &image) != 0;
    HICON handle = isScaled ? CIcons().MakeIconFromResource(&scaled.Image()) : nullptr;
    ImageSize made;
    std::vector<uint32_t> pixels;
    const bool isMade = GetIconPixels(handle, made.width, made.height, pixels);
    ReleaseIcon(handle);
    if (!isMade || made != size) {
        ThrowDamaged(image, path);
    }
    return pixels;
}

ExitStatus ShowAction::Run(Console& console)
{
    const std::optional<uint32_t> background = Background();
    LibraryMessages messages(console);
    const IconSource source(m_path, messages);
    const std::vector<ICONIMAGE*> images = m_choice.Images(source, messages);
    RequireColours(console);
    // The last line is the prompt's.
    const platform::TerminalSize terminal =
        console.OutputTerminal().value_or(platform::TerminalSize());
    const ImageSize room{static_cast<uint32_t>(terminal.columns),
                         static_cast<uint32_t>(std::max(terminal.rows - 1, 1)) * 2};
    const ICONIMAGE& image = ImageToShow(images, room);
    const ImageSize size = FittingSize(image, room);
    const std::vector<uint32_t> pixels = PixelsAt(image, size, m_path);
    console.Write(DrawHalfBlocks(pixels, size.width, size.height, background));
    return ExitStatus::Done;
}

} // namespace

std::unique_ptr<Command> MakeIconShowAction()
{
    return std::make_unique<ShowAction>();
}

} // namespace encap::cli
