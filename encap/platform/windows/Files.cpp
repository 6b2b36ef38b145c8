#include "encap/platform/Files.h"

#include "encap/platform/ReplaceSteps.h"
#include "encap/platform/windows/NativePath.h"
#include "encap/platform/windows/OwnedHandle.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace encap::platform {
namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::size_t kMostAtOnce = std::size_t{1} << 30;

/// A file that is removed with the object unless it was kept.
class TemporaryFile {
public:
    explicit TemporaryFile(CString path) : m_path(std::move(path)) {}
    ~TemporaryFile()
    {
        if (!m_path.empty()) {
            DeleteFileW(m_path.c_str());
        }
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    [[nodiscard]] const CString& Path() const { return m_path; }
    void Keep() { m_path.clear(); }

private:
    CString m_path;
};

HANDLE Open(const CString& native, DWORD access, DWORD disposition)
{
    return CreateFileW(native.c_str(), access, kShareAll, nullptr, disposition,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

/// Replaces the path of a link by that of the file it leads to, so that the link stays. False for a
/// link that leads nowhere.
bool FollowLink(CString& native, DWORD attributes)
{
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
        return true;
    }
    const OwnedHandle file(Open(native, 0, OPEN_EXISTING));
    CString target(MAX_PATH, L'\0');
    DWORD size = 0;
    while (file.IsOpen() && (size = GetFinalPathNameByHandleW(
                                 file.Get(), target.data(), static_cast<DWORD>(target.size()),
                                 FILE_NAME_NORMALIZED)) > target.size()) {
        target.resize(size);
    }
    target.resize(size);
    native = target;
    return size != 0;
}

/// A plain file that the user may write. Opening it asks the system, and changes nothing.
bool IsReplaceable(const CString& native, DWORD attributes)
{
    if ((attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) != 0) {
        return false;
    }
    const OwnedHandle file(Open(native, GENERIC_WRITE, OPEN_EXISTING));
    return file.IsOpen() && GetFileType(file.Get()) == FILE_TYPE_DISK;
}

/// Makes a new file beside the target under a name of its own.
HANDLE CreateTemporary(const CString& target, CString& path)
{
    HANDLE handle = INVALID_HANDLE_VALUE;
    for (int i = 0; i < kMostTemporaryNames && handle == INVALID_HANDLE_VALUE; ++i) {
        path = target.substr(0, FileNamePosition(target)) + NewTemporaryName(i);
        handle = Open(path, GENERIC_WRITE, CREATE_NEW);
        if (handle == INVALID_HANDLE_VALUE && GetLastError() != ERROR_FILE_EXISTS) {
            break;
        }
    }
    return handle;
}

Replacement WriteAll(HANDLE file, std::string_view bytes)
{
    if (StepIsMadeToFail()) {
        return Replacement::NotBegun;
    }
    const std::size_t whole = bytes.size();
    while (!bytes.empty()) {
        const auto size = static_cast<DWORD>(std::min(bytes.size(), kMostAtOnce));
        DWORD written = 0;
        if (WriteFile(file, bytes.data(), size, &written, nullptr) == 0 || written == 0) {
            return bytes.size() == whole ? Replacement::NotBegun : Replacement::NotFinished;
        }
        bytes.remove_prefix(written);
    }
    return Replacement::Done;
}

bool Flush(HANDLE file)
{
    return !StepIsMadeToFail() && FlushFileBuffers(file) != 0;
}

/// The access list of a file in the system's form; empty where the file system keeps none.
std::vector<unsigned char> AccessListOf(const CString& native)
{
    DWORD size = 0;
    GetFileSecurityW(native.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::vector<unsigned char> list(size);
    if (size == 0 || GetFileSecurityW(native.c_str(), DACL_SECURITY_INFORMATION, list.data(), size,
                                      &size) == 0) {
        list.clear();
    }
    return list;
}

/// Gives the new file the attributes and the access list of the old one. A list that the folder
/// hands down to both is left as it is.
bool CopyPermissions(const CString& from, DWORD attributes, const CString& to)
{
    constexpr DWORD kCopied = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                              FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
    std::vector<unsigned char> list = AccessListOf(from);
    if (!list.empty() && list != AccessListOf(to) &&
        SetFileSecurityW(to.c_str(), DACL_SECURITY_INFORMATION, list.data()) == 0) {
        return false;
    }
    const DWORD copied = attributes & kCopied;
    return SetFileAttributesW(to.c_str(), copied != 0 ? copied : FILE_ATTRIBUTE_NORMAL) != 0;
}

/// Other programs, such as those that search files for viruses, hold new files open for a moment.
bool Rename(const CString& from, const CString& to)
{
    constexpr int kMostTries = 20;
    constexpr DWORD kPauseMilliseconds = 10;
    if (StepIsMadeToFail()) {
        return false;
    }
    for (int tries = 1;; ++tries) {
        if (MoveFileExW(from.c_str(), to.c_str(),
                        MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0) {
            return true;
        }
        const DWORD error = GetLastError();
        const bool mayPass = error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION;
        if (!mayPass || tries == kMostTries) {
            return false;
        }
        Sleep(kPauseMilliseconds);
    }
}

bool IsDirectory(const CString& native)
{
    const DWORD attributes = GetFileAttributesW(native.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

} // namespace

wchar_t PathSeparator()
{
    return L'\\';
}

bool FileExists(const CString& path)
{
    CString native;
    if (!NativePath(path, native)) {
        return false;
    }
    const DWORD attributes = GetFileAttributesW(native.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool ReadWholeFile(const CString& path, std::string& bytes)
{
    CString native;
    if (!NativePath(path, native)) {
        return false;
    }
    const OwnedHandle file(Open(native, GENERIC_READ, OPEN_EXISTING));
    LARGE_INTEGER size{};
    if (!file.IsOpen()) {
        return false;
    }

    // The size is a first guess: the file may grow meanwhile, and a device reports none.
    constexpr std::size_t kLeastRead = 4096;
    constexpr LONGLONG kMostTrusted = LONGLONG{1} << 28;
    GetFileSizeEx(file.Get(), &size);
    std::string content;
    std::size_t used = 0;
    content.resize(static_cast<std::size_t>(std::clamp<LONGLONG>(size.QuadPart, 0, kMostTrusted)) +
                   1);
    for (;;) {
        const auto wanted = static_cast<DWORD>(std::min(content.size() - used, kMostAtOnce));
        DWORD count = 0;
        if (ReadFile(file.Get(), content.data() + used, wanted, &count, nullptr) == 0) {
            return false;
        }
        if (count == 0) {
            break;
        }
        used += count;
        if (used == content.size()) {
            content.resize(content.size() + std::max(content.size(), kLeastRead));
        }
    }
    content.resize(used);
    bytes = std::move(content);
    return true;
}

Replacement TryReplaceFile(const CString& path, std::string_view bytes)
{
    CString target;
    if (!NativePath(path, target)) {
        return Replacement::NotCreated;
    }
    const DWORD attributes = GetFileAttributesW(target.c_str());
    const bool replaces = attributes != INVALID_FILE_ATTRIBUTES;
    if (replaces && (!FollowLink(target, attributes) || !IsReplaceable(target, attributes))) {
        return Replacement::NotCreated;
    }

    CString temporaryPath;
    OwnedHandle file(CreateTemporary(target, temporaryPath));
    if (!file.IsOpen()) {
        return Replacement::NotCreated;
    }
    TemporaryFile temporary(temporaryPath);
    const Replacement written = WriteAll(file.Get(), bytes);
    if (written != Replacement::Done || !Flush(file.Get()) || !file.Close()) {
        file.Close(); // an open file is not removed
        return written != Replacement::Done ? written : Replacement::NotFinished;
    }
    if ((replaces && !CopyPermissions(target, attributes, temporary.Path())) ||
        !Rename(temporary.Path(), target)) {
        return Replacement::NotFinished;
    }
    temporary.Keep();
    return Replacement::Done;
}

bool DeleteFileIfPresent(const CString& path)
{
    CString native;
    if (!NativePath(path, native)) {
        return false;
    }
    if (DeleteFileW(native.c_str()) != 0) {
        return true;
    }
    const DWORD error = GetLastError();
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND ||
           error == ERROR_INVALID_NAME || error == ERROR_DIRECTORY;
}

bool MakeDirectories(const CString& path)
{
    CString native;
    if (!NativePath(path, native)) {
        return false;
    }
    for (std::size_t end = native.find(L'\\', 1); end != CString::npos;
         end = native.find(L'\\', end + 1)) {
        // Whether each is there shows at the end.
        CreateDirectoryW(native.substr(0, end).c_str(), nullptr);
    }
    CreateDirectoryW(native.c_str(), nullptr);
    return IsDirectory(native);
}

CString TemporaryDirectory()
{
    CString directory(MAX_PATH + 1, L'\0');
    DWORD size = 0;
    while ((size = GetTempPathW(static_cast<DWORD>(directory.size()), directory.data())) >
           directory.size()) {
        directory.resize(size);
    }
    directory.resize(size);
    // "C:\" is a root, "C:" would be the current directory of the drive.
    constexpr std::size_t kRootSize = 3;
    while (directory.size() > kRootSize && directory.back() == L'\\') {
        directory.pop_back();
    }
    return directory.empty() ? L"." : directory;
}

} // namespace encap::platform
