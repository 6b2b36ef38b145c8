#include "encap/platform/Files.h"

#include "encap/foundation/CodePoints.h"
#include "encap/platform/Encoding.h"
#include "encap/platform/ReplaceSteps.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace encap::platform {
namespace {

constexpr int kMostLinks = 40;
constexpr std::size_t kLongestLink = 4096;
constexpr mode_t kPermissionBits = 07777;

/// An open file, closed with the object.
class Descriptor {
public:
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] bool IsOpen() const { return m_descriptor >= 0; }
    [[nodiscard]] int Get() const { return m_descriptor; }
    /// False when the system reports a write that failed late.
    bool Close()
    {
        const int descriptor = std::exchange(m_descriptor, -1);
        // After EINTR the descriptor is gone, and fsync has told of the content.
        return descriptor < 0 || close(descriptor) == 0 || errno == EINTR;
    }

private:
    int m_descriptor;
};

/// A file that is removed with the object unless it was kept.
class TemporaryFile {
public:
    explicit TemporaryFile(std::string path) : m_path(std::move(path)) {}
    ~TemporaryFile()
    {
        if (!m_path.empty()) {
            unlink(m_path.c_str());
        }
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    [[nodiscard]] const std::string& Path() const { return m_path; }
    void Keep() { m_path.clear(); }

private:
    std::string m_path;
};

/// Repeats a call that a signal interrupted.
template <class Call>
auto Uninterrupted(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR) {
        result = call();
    }
    return result;
}

/// The path in the system's bytes, with "/" for "\". False for an empty path and for what the
/// conversion would change silently: a zero, a lone surrogate.
bool NativePath(std::wstring_view path, std::string& native)
{
    if (path.empty()) {
        return false;
    }
    const wchar_t* const end = path.data() + path.size();
    for (const wchar_t* position = path.data(); position != end;) {
        const char32_t codePoint = NextCodePoint(position, end);
        if (codePoint == 0 || codePoint > kLastCodePoint || IsSurrogate(codePoint)) {
            return false;
        }
    }
    native = WideToUtf8(path);
    std::replace(native.begin(), native.end(), '\\', '/');
    return true;
}

/// The directory part of a path with its "/"; empty for a bare name.
std::string DirectoryPart(const std::string& path)
{
    return path.substr(0, path.rfind('/') + 1);
}

/// Follows the links that the last component may be, so that a link's file is replaced and not the
/// link. False for a chain without an end.
bool FollowLinks(std::string& path)
{
    for (int i = 0; i < kMostLinks; ++i) {
        struct stat status {};
        if (lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) {
            return true;
        }
        std::string target(kLongestLink, '\0');
        const ssize_t length = readlink(path.c_str(), target.data(), target.size());
        if (length <= 0 || static_cast<std::size_t>(length) == target.size()) {
            return false;
        }
        target.resize(static_cast<std::size_t>(length));
        path = target.front() == '/' ? target : DirectoryPart(path).append(target);
    }
    return false;
}

Replacement WriteAll(int descriptor, std::string_view bytes)
{
    if (StepIsMadeToFail()) {
        return Replacement::NotBegun;
    }
    const std::size_t whole = bytes.size();
    while (!bytes.empty()) {
        const ssize_t written =
            Uninterrupted([&] { return write(descriptor, bytes.data(), bytes.size()); });
        if (written <= 0) {
            return bytes.size() == whole ? Replacement::NotBegun : Replacement::NotFinished;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return Replacement::Done;
}

bool Flush(int descriptor)
{
    return !StepIsMadeToFail() && Uninterrupted([&] { return fsync(descriptor); }) == 0;
}

bool Rename(const std::string& from, const std::string& to)
{
    return !StepIsMadeToFail() && std::rename(from.c_str(), to.c_str()) == 0;
}

/// Makes a new file in the directory (which ends in "/" or is empty) under a name of its own.
int CreateTemporary(const std::string& directory, mode_t mode, std::string& path)
{
    int descriptor = -1;
    for (int i = 0; i < kMostTemporaryNames && descriptor < 0; ++i) {
        path = directory + WideToUtf8(NewTemporaryName(i));
        descriptor = Uninterrupted(
            [&] { return open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode); });
        if (descriptor < 0 && errno != EEXIST) {
            break;
        }
    }
    return descriptor;
}

/// Gives the new file the owner and the permissions of the old one. Only the permissions are
/// required: a user who may write a file often may not give one away.
bool CopyPermissions(int descriptor, const struct stat& old)
{
    if (fchown(descriptor, old.st_uid, old.st_gid) != 0 && errno != EPERM && errno != EINVAL) {
        return false;
    }
    return fchmod(descriptor, old.st_mode & kPermissionBits) == 0;
}

/// Makes a rename in the directory last. Not every file system can, and the file is whole anyway.
void FlushDirectory(const std::string& directory)
{
    const std::string name = directory.empty() ? "." : directory;
    const Descriptor handle(open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (handle.IsOpen()) {
        fsync(handle.Get());
    }
}

} // namespace

wchar_t PathSeparator()
{
    return L'/';
}

bool FileExists(const CString& path)
{
    std::string native;
    struct stat status {};
    return NativePath(path, native) && stat(native.c_str(), &status) == 0 &&
           !S_ISDIR(status.st_mode);
}

bool ReadWholeFile(const CString& path, std::string& bytes)
{
    std::string native;
    if (!NativePath(path, native)) {
        return false;
    }
    const Descriptor file(
        Uninterrupted([&] { return open(native.c_str(), O_RDONLY | O_CLOEXEC); }));
    struct stat status {};
    if (!file.IsOpen() || fstat(file.Get(), &status) != 0) {
        return false;
    }

    // The size is a first guess: the file may grow meanwhile, and some report none or any.
    constexpr std::size_t kLeastRead = 4096;
    constexpr off_t kMostTrusted = off_t{1} << 28;
    std::string content;
    std::size_t used = 0;
    content.resize(static_cast<std::size_t>(std::clamp<off_t>(status.st_size, 0, kMostTrusted)) +
                   1);
    for (;;) {
        const ssize_t count = Uninterrupted(
            [&] { return read(file.Get(), content.data() + used, content.size() - used); });
        if (count < 0) {
            return false;
        }
        if (count == 0) {
            break;
        }
        used += static_cast<std::size_t>(count);
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
    std::string target;
    if (!NativePath(path, target) || !FollowLinks(target)) {
        return Replacement::NotCreated;
    }
    struct stat old {};
    const bool replaces = stat(target.c_str(), &old) == 0;
    // A rename would put a plain file in a device's place and get around a write protection.
    if (replaces &&
        (!S_ISREG(old.st_mode) || faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0)) {
        return Replacement::NotCreated;
    }

    constexpr mode_t kPrivate = 0600;
    constexpr mode_t kAsUserAllows = 0666;
    const std::string directory = DirectoryPart(target);
    std::string temporaryPath;
    Descriptor file(CreateTemporary(directory, replaces ? kPrivate : kAsUserAllows, temporaryPath));
    if (!file.IsOpen()) {
        return Replacement::NotCreated;
    }
    TemporaryFile temporary(temporaryPath);
    const Replacement written = WriteAll(file.Get(), bytes);
    if (written != Replacement::Done) {
        return written;
    }
    if ((replaces && !CopyPermissions(file.Get(), old)) || !Flush(file.Get()) || !file.Close() ||
        !Rename(temporary.Path(), target)) {
        return Replacement::NotFinished;
    }
    temporary.Keep();
    FlushDirectory(directory);
    return Replacement::Done;
}

bool DeleteFileIfPresent(const CString& path)
{
    std::string native;
    return NativePath(path, native) &&
           (unlink(native.c_str()) == 0 || errno == ENOENT || errno == ENOTDIR);
}

bool MakeDirectories(const CString& path)
{
    std::string native;
    if (!NativePath(path, native)) {
        return false;
    }
    for (std::size_t end = native.find('/', 1); end != std::string::npos;
         end = native.find('/', end + 1)) {
        // Whether each is there shows at the end.
        mkdir(native.substr(0, end).c_str(), 0777);
    }
    struct stat status {};
    mkdir(native.c_str(), 0777);
    return stat(native.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

CString TemporaryDirectory()
{
    const char* const configured = std::getenv("TMPDIR");
    CString directory = configured != nullptr ? Utf8ToWide(configured) : CString();
    // A name that is not UTF-8 cannot be handed on as wide text.
    if (directory.empty() || WideToUtf8(directory) != configured) {
        return L"/tmp";
    }
    while (directory.size() > 1 && directory.back() == L'/') {
        directory.pop_back();
    }
    return directory;
}

} // namespace encap::platform
