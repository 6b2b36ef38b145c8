#include "encap/platform/IconHandles.h"

#include "encap/platform/Files.h"

#include <memory>
#include <utility>

struct HICON__ {
    uint32_t width;
    uint32_t height;
    std::vector<uint32_t> bgra;
};

struct HINSTANCE__ {
    std::string content;
};

bool GetIconPixels(HICON icon, uint32_t& width, uint32_t& height, std::vector<uint32_t>& bgra)
{
    if (icon == nullptr) {
        return false;
    }
    width = icon->width;
    height = icon->height;
    bgra = icon->bgra;
    return true;
}

void ReleaseIcon(HICON icon)
{
    delete icon;
}

HINSTANCE OpenExecutable(const wchar_t* file)
{
    auto executable = std::make_unique<HINSTANCE__>();
    const CString path = file != nullptr ? file : L"";
    if (!encap::platform::ReadWholeFile(path, executable->content)) {
        return nullptr;
    }
    return executable.release();
}

void CloseExecutable(HINSTANCE executable)
{
    delete executable;
}

namespace encap::platform {

HICON CreateIconHandle(uint32_t width, uint32_t height, std::vector<uint32_t> bgra)
{
    return std::make_unique<HICON__>(HICON__{width, height, std::move(bgra)}).release();
}

std::string_view ExecutableContent(HINSTANCE executable, std::string&)
{
    return executable != nullptr ? std::string_view(executable->content) : std::string_view();
}

} // namespace encap::platform
