#include "cli/Paths.h"

#include "cli/CommandError.h"
#include "encap/foundation/CaseFolding.h"
#include "encap/platform/Encoding.h"
#include "encap/platform/Files.h"

#include <algorithm>
#include <system_error>

namespace encap::cli {

std::filesystem::path NativePath(const CString& path)
{
    const std::string utf8 = platform::WideToUtf8(path);
    return {std::u8string(utf8.begin(), utf8.end())};
}

bool IsAbsolutePath(std::wstring_view path)
{
    if (path.empty()) {
        return false;
    }
    const bool hasDrive = path.size() > 1 && path[1] == L':' && IsLetter(path[0]);
    return path[0] == L'/' || path[0] == L'\\' || hasDrive;
}

CString FolderOf(const CString& path)
{
    return path.substr(0, platform::FileNamePosition(path));
}

CString FileNameOf(const CString& path)
{
    return path.substr(platform::FileNamePosition(path));
}

CString ResolveReference(const CString& document, CString name)
{
    std::replace(name.begin(), name.end(), L'\\', L'/');
    if (!IsAbsolutePath(name)) {
        return FolderOf(document) + name;
    }
    return platform::FileExists(name) ? name : FolderOf(document) + FileNameOf(name);
}

bool IsDirectory(const CString& path)
{
    std::error_code ignored;
    return std::filesystem::is_directory(NativePath(path), ignored);
}

bool IsStream(const CString& path)
{
    std::error_code ignored;
    return std::filesystem::is_other(NativePath(path), ignored);
}

bool IsSameFile(const CString& left, const CString& right)
{
    std::error_code failed;
    return std::filesystem::equivalent(NativePath(left), NativePath(right), failed) && !failed;
}

void RequireNotRead(const CString& output, const CString& input)
{
    if (!output.empty() && IsSameFile(output, input)) {
        throw UsageError(output + L": -o names a file that is read");
    }
}

} // namespace encap::cli
