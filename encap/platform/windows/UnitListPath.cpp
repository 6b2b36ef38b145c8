#include "encap/platform/UnitListPath.h"

#include "encap/platform/Files.h"
#include "encap/platform/windows/NativePath.h"
#include "encap/platform/windows/WindowsHeaders.h"

namespace encap::platform {
namespace {

constexpr const wchar_t* kVariable = L"ENCAP_UNITS";
constexpr const wchar_t* kFileName = L"encap-units.tsv";

/// The folder, with its separator, of the program or library that this code was linked into.
CString OwnFolder()
{
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                           GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const wchar_t*>(&OwnFolder), &module);
    const CString path = FileOfModule(module);
    return path.substr(0, FileNamePosition(path));
}

/// Empty where the variable is not set.
CString EnvironmentVariable(const wchar_t* name)
{
    CString value;
    DWORD size = 0;
    while ((size = GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size()))) >
           value.size()) {
        value.resize(size);
    }
    value.resize(size);
    return value;
}

} // namespace

CString UnitListPath()
{
    const CString named = EnvironmentVariable(kVariable);
    if (!named.empty()) {
        return named;
    }
    const CString folder = OwnFolder();
    const CString shared = folder + L"..\\share\\encap\\" + kFileName;
    const CString beside = folder + kFileName;
    return !FileExists(beside) && FileExists(shared) ? shared : beside;
}

} // namespace encap::platform
