#include "encap/platform/windows/NativePath.h"

#include "encap/foundation/CodePoints.h"
#include "encap/platform/windows/WindowsHeaders.h"

#include <algorithm>

namespace encap::platform {
namespace {

/// Directories have the lowest limit: MAX_PATH less a file name of the 8.3 form.
constexpr std::size_t kLongestPlainPath = MAX_PATH - 12 - 1;
/// Room for the name of a temporary file beside the path.
constexpr std::size_t kLongestTemporaryName = 48;

bool IsExpressible(std::wstring_view path)
{
    const wchar_t* const end = path.data() + path.size();
    for (const wchar_t* position = path.data(); position != end;) {
        const char32_t codePoint = NextCodePoint(position, end);
        if (codePoint == 0 || IsSurrogate(codePoint)) {
            return false;
        }
    }
    return !path.empty();
}

bool IsInDeviceNamespace(const CString& path)
{
    return path.starts_with(L"\\\\?\\") || path.starts_with(L"\\\\.\\");
}

bool MakeAbsolute(CString& path)
{
    CString whole(path.size() + MAX_PATH, L'\0');
    DWORD size = 0;
    while ((size = GetFullPathNameW(path.c_str(), static_cast<DWORD>(whole.size()), whole.data(),
                                    nullptr)) > whole.size()) {
        whole.resize(size);
    }
    whole.resize(size);
    path = whole;
    return size != 0;
}

} // namespace

CString FileOfModule(void* module)
{
    constexpr std::size_t kLongest = 32768;
    CString path(kLongest, L'\0');
    path.resize(GetModuleFileNameW(static_cast<HMODULE>(module), path.data(),
                                   static_cast<DWORD>(path.size())));
    return path;
}

bool NativePath(std::wstring_view path, CString& native)
{
    if (!IsExpressible(path)) {
        return false;
    }
    native = path;
    std::replace(native.begin(), native.end(), L'/', L'\\');
    if (IsInDeviceNamespace(native) || native.size() + kLongestTemporaryName < kLongestPlainPath) {
        return true;
    }
    if (!MakeAbsolute(native)) {
        return false;
    }
    if (!IsInDeviceNamespace(native)) {
        const bool isOnServer = native.starts_with(L"\\\\");
        native = isOnServer ? L"\\\\?\\UNC" + native.substr(1) : L"\\\\?\\" + native;
    }
    return true;
}

} // namespace encap::platform
