#include "cli/FileSearch.h"

#include "cli/CommandError.h"
#include "cli/Paths.h"
#include "encap/foundation/CaseFolding.h"
#include "encap/platform/Encoding.h"

#include <filesystem>
#include <system_error>

namespace encap::cli {
namespace {

namespace fs = std::filesystem;

constexpr std::wstring_view kAnyFolders = L"**";

CString WideOf(const fs::path& path)
{
    const std::u8string utf8 = path.generic_u8string();
    return platform::Utf8ToWide(std::string(utf8.begin(), utf8.end()));
}

bool IsHidden(std::wstring_view name)
{
    return name.starts_with(L'.');
}

void RequireRead(const std::error_code& failed, const CString& folder)
{
    if (failed) {
        throw FileError(folder,
                        L"the folder cannot be read: " + platform::Utf8ToWide(failed.message()));
    }
}

/// The pattern's first component that is a pattern, with what stands before and behind it.
struct SplitPattern {
    CString folder;
    CString component;
    CString rest; ///< empty behind the last component
};

SplitPattern Split(const CString& pattern)
{
    const std::size_t wild = pattern.find_first_of(L"*?");
    const std::size_t slash = pattern.rfind(L'/', wild);
    const std::size_t begin = slash == CString::npos ? 0 : slash + 1;
    const std::size_t end = pattern.find(L'/', begin);
    return {pattern.substr(0, begin), pattern.substr(begin, end - begin),
            end == CString::npos ? CString() : pattern.substr(end + 1)};
}

void Expand(const CString& pattern, std::vector<CString>& found);

void ExpandEntry(const fs::directory_entry& entry, const SplitPattern& split,
                 std::vector<CString>& found)
{
    std::error_code ignored;
    const CString name = WideOf(entry.path().filename());
    const CString path = split.folder + name;
    const bool isFolder = entry.is_directory(ignored);
    if (split.component == kAnyFolders) {
        if (isFolder && !IsHidden(name) && !entry.is_symlink(ignored)) {
            Expand(path + L'/' + split.component + L'/' + split.rest, found);
        }
        return;
    }
    if (!MatchesPattern(name, split.component) || (IsHidden(name) && !IsHidden(split.component))) {
        return;
    }
    if (split.rest.empty()) {
        if (!entry.is_other(ignored)) {
            found.push_back(path);
        }
    } else if (isFolder) {
        Expand(path + L'/' + split.rest, found);
    }
}

// A folder that is not there, or that may not be read, has nothing that fits.
void Expand(const CString& pattern, std::vector<CString>& found)
{
    std::error_code failed;
    if (!IsPattern(pattern)) {
        if (fs::exists(NativePath(pattern), failed)) {
            found.push_back(pattern);
        }
        return;
    }
    const SplitPattern split = Split(pattern);
    if (split.component == kAnyFolders) {
        Expand(split.folder + (split.rest.empty() ? L"*" : split.rest), found);
    }
    const CString folder = split.folder.empty() ? CString(L".") : split.folder;
    for (fs::directory_iterator entry(NativePath(folder), failed), end; !failed && entry != end;
         entry.increment(failed)) {
        ExpandEntry(*entry, split, found);
    }
}

} // namespace

bool IsPattern(std::wstring_view path)
{
    return path.find_first_of(L"*?") != std::wstring_view::npos;
}

// Goes back to the last "*" only, which is enough: a later one can take over what an earlier one
// would have to give back.
bool MatchesPattern(std::wstring_view name, std::wstring_view pattern)
{
    std::size_t at = 0;
    std::size_t in = 0;
    std::size_t star = std::wstring_view::npos;
    std::size_t taken = 0;
    while (at < name.size()) {
        if (in < pattern.size() && pattern[in] == L'*') {
            star = in++;
            taken = at;
        } else if (in < pattern.size() && (pattern[in] == L'?' || pattern[in] == name[at])) {
            ++in;
            ++at;
        } else if (star != std::wstring_view::npos) {
            in = star + 1;
            at = ++taken;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(L'*', in) == std::wstring_view::npos;
}

std::vector<CString> PathsMatching(const CString& pattern)
{
    std::vector<CString> found;
    Expand(pattern, found);
    return found;
}

std::vector<CString> XmlFilesBelow(const CString& folder)
{
    std::error_code failed;
    fs::recursive_directory_iterator entry(NativePath(folder), failed);
    RequireRead(failed, folder);
    std::vector<CString> files;
    for (const fs::recursive_directory_iterator end; entry != end;) {
        const CString path = WideOf(entry->path());
        std::error_code ignored;
        if (EqualNoCase(WideOf(entry->path().extension()), L".xml") &&
            !entry->is_directory(ignored) && !entry->is_other(ignored)) {
            files.push_back(path);
        }
        entry.increment(failed);
        RequireRead(failed, path);
    }
    return files;
}

CString NormalPath(const CString& path)
{
    return WideOf(NativePath(path).lexically_normal());
}

} // namespace encap::cli
