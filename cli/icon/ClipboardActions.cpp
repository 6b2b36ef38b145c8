#include "cli/CommandError.h"
#include "cli/Options.h"
#include "cli/icon/Bitmaps.h"
#include "cli/icon/DesktopClipboard.h"
#include "cli/icon/IconActions.h"
#include "cli/icon/ImageConversion.h"
#include "cli/icon/ImageOutput.h"
#include "cli/icon/LibraryMessages.h"

namespace encap::cli {
namespace {

[[noreturn]] void ThrowFailure(const DesktopClipboard& clipboard, const CString& what)
{
    const CString& reason = clipboard.Failure();
    throw CommandError(ExitStatus::Failed, reason.empty() ? what : what + L": " + reason);
}

class CopyAction : public Command {
public:
    void Declare(Options& options) override;
    ExitStatus Run(Console& console) override;

private:
    CString m_path;
    ImageChoice m_choice;
};

void CopyAction::Declare(Options& options)
{
    options.Argument(m_path, "FILE", "An ICO, BMP or PNG file, or an executable or library");
    m_choice.DeclareIcon(options);
    m_choice.DeclareImage(options);
    options.Footer("Of the images that fit, the largest and deepest is copied, as a bitmap "
                   "(image/bmp) without its\nmask. Away from Windows xclip, or wl-copy, does it, "
                   "on the display of DISPLAY or WAYLAND_DISPLAY.");
}

ExitStatus CopyAction::Run(Console& console)
{
    LibraryMessages messages(console);
    const IconSource source(m_path, messages);
    const ICONIMAGE& image = m_choice.Image(source, messages);
    // The library would empty the clipboard first.
    if (!IsWholeImage(image)) {
        ThrowDamaged(image, m_path);
    }
    const DesktopClipboard clipboard;
    if (CIcons().IconImageToClipBoard(&image) == 0) {
        ThrowFailure(clipboard, L"the image cannot be copied");
    }
    return ExitStatus::Done;
}

class PasteAction : public Command {
public:
    void Declare(Options& options) override;
    ExitStatus Run(Console& console) override;

private:
    std::optional<CString> m_size;
    ImageDepth m_depth;
    ImageOutput m_output;
};

void PasteAction::Declare(Options& options)
{
    options.Text(m_size, "--size", "WxH", "Convert to this size, as 32x32 or 32");
    m_depth.Declare(options);
    m_output.Declare(options, "The file to write; it ends in .ico, .bmp or .png");
    options.Footer("Away from Windows xclip, or wl-paste, gives the bitmap (image/bmp), from the "
                   "display of DISPLAY or\nWAYLAND_DISPLAY.");
}

ExitStatus PasteAction::Run(Console& console)
{
    const ImageFormat format = m_output.Format();
    ImageSize size = m_size ? ParseSize(*m_size) : ImageSize();
    LibraryMessages messages(console);
    const DesktopClipboard clipboard;
    platform::ClipboardBitmap bitmap;
    if (!platform::TakeClipboardBitmap(bitmap)) {
        ThrowFailure(clipboard, L"there is nothing to paste");
    }
    const std::optional<OwnedImage> image = ImageOfBitmap(bitmap);
    if (!image) {
        throw CommandError(ExitStatus::Failed, L"the bitmap on the clipboard is damaged");
    }
    if (!m_size) {
        size = SizeOf(image->Image());
    }
    OwnedImage converted =
        Converted(image->Image(), size, m_depth.BitsFor(image->Image()), L"the clipboard");
    if (format == ImageFormat::Ico) {
        RequireIconSize(converted.Image(), L"the clipboard");
    }
    m_output.WriteImage(converted.Image(), L"the clipboard", messages);
    return ExitStatus::Done;
}

} // namespace

std::unique_ptr<Command> MakeIconCopyAction()
{
    return std::make_unique<CopyAction>();
}

std::unique_ptr<Command> MakeIconPasteAction()
{
    return std::make_unique<PasteAction>();
}

} // namespace encap::cli
