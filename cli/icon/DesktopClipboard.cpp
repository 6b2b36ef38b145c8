#include "cli/icon/DesktopClipboard.h"

#include "cli/CommandError.h"
#include "cli/icon/Bitmaps.h"
#include "encap/foundation/NumberText.h"
#include "encap/icons/Dib.h"
#include "encap/platform/ChildProcess.h"

#include <cstdlib>

namespace encap::cli {
namespace {

constexpr std::size_t kMostBytes = std::size_t{256} << 20;
constexpr const char* kType = "image/bmp";

bool IsSet(const char* variable)
{
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

std::vector<std::string> WaylandCommand(bool isCopy)
{
    return isCopy ? std::vector<std::string>{"wl-copy", "--type", kType}
                  : std::vector<std::string>{"wl-paste", "--no-newline", "--type", kType};
}

std::vector<std::string> XCommand(bool isCopy)
{
    return {"xclip", "-selection", "clipboard", "-t", kType, isCopy ? "-i" : "-o"};
}

CString FailureText(const platform::ChildResult& result, const std::string& program, bool isCopy)
{
    const CString name = platform::Utf8ToWide(program);
    switch (result.end) {
    case platform::ChildEnd::NotStarted: return name + L" is needed and not installed";
    case platform::ChildEnd::TimedOut: return name + L" does not end";
    case platform::ChildEnd::TooMuchOutput: return L"there is more on the clipboard than an image";
    case platform::ChildEnd::Killed: return name + L" was ended";
    default: break;
    }
    const CString reason = isCopy ? L"the display cannot be reached"
                                  : L"there is no image of the type image/bmp on the clipboard, or "
                                    L"the display cannot be reached";
    return reason + L" (" + name + L" ends with status " + FormatInteger(result.exitStatus) + L')';
}

} // namespace

DesktopClipboard::DesktopClipboard()
{
    if (platform::SystemClipboardIsShared()) {
        return;
    }
    m_hasWayland = IsSet("WAYLAND_DISPLAY");
    m_hasX = IsSet("DISPLAY");
    if (!m_hasWayland && !m_hasX) {
        throw CommandError(ExitStatus::Failed, L"there is no clipboard without a display: neither "
                                               L"WAYLAND_DISPLAY nor DISPLAY is set");
    }
    m_previous = platform::SetClipboardHook(
        {[this](const platform::ClipboardBitmap& bitmap) { return Offer(bitmap); },
         [this](platform::ClipboardBitmap& bitmap) { return Take(bitmap); }});
    m_isConnected = true;
}

DesktopClipboard::~DesktopClipboard()
{
    if (m_isConnected) {
        platform::SetClipboardHook(m_previous);
    }
}

bool DesktopClipboard::Offer(const platform::ClipboardBitmap& bitmap)
{
    const std::vector<unsigned char> file = CDib::ToFileBytes(bitmap.data(), bitmap.size());
    std::string ignored;
    return RunHelper(true, {reinterpret_cast<const char*>(file.data()), file.size()}, ignored);
}

bool DesktopClipboard::Take(platform::ClipboardBitmap& bitmap)
{
    std::string file;
    if (!RunHelper(false, {}, file)) {
        return false;
    }
    bitmap = PackedBitmapOf(file);
    m_failure = bitmap.empty() ? L"what is on the clipboard is no BMP file" : L"";
    return !bitmap.empty();
}

bool DesktopClipboard::RunHelper(bool isCopy, std::string_view input, std::string& output)
{
    platform::ChildRun run;
    run.input = input;
    run.mostOutput = isCopy ? 0 : kMostBytes;
    platform::ChildResult result;
    if (m_hasWayland) {
        run.command = WaylandCommand(isCopy);
        result = platform::RunChild(run);
    }
    if (m_hasX && result.end == platform::ChildEnd::NotStarted) {
        run.command = XCommand(isCopy);
        result = platform::RunChild(run);
    }
    const bool isDone = result.end == platform::ChildEnd::Exited && result.exitStatus == 0;
    m_failure = isDone ? L"" : FailureText(result, run.command.front(), isCopy);
    output = std::move(result.output);
    return isDone;
}

} // namespace encap::cli
