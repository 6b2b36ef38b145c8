#include "cli/icon/IconSource.h"

#include "cli/CommandError.h"
#include "cli/Paths.h"
#include "cli/icon/Bitmaps.h"
#include "cli/icon/LibraryMessages.h"
#include "encap/foundation/CaseFolding.h"
#include "encap/icons/Dib.h"
#include "encap/platform/Files.h"

#include <algorithm>
#include <new>
#include <optional>
#include <string_view>

namespace encap::cli {
namespace {

using namespace std::string_view_literals;

struct KindMark {
    std::string_view start;
    SourceKind kind;
};

// Of ICO files only what they share with cursors, which the library refuses with a reason.
constexpr KindMark kMarks[] = {
    {"\x89PNG\r\n\x1A\n"sv, SourceKind::Png}, {"BM"sv, SourceKind::Bmp},
    {"MZ"sv, SourceKind::Executable},         {"\0\0\1\0"sv, SourceKind::Ico},
    {"\0\0\2\0"sv, SourceKind::Ico},
};

struct KindEnding {
    std::wstring_view ending;
    SourceKind kind;
};

constexpr KindEnding kEndings[] = {
    {L".ico", SourceKind::Ico},        {L".bmp", SourceKind::Bmp},
    {L".dib", SourceKind::Bmp},        {L".png", SourceKind::Png},
    {L".exe", SourceKind::Executable}, {L".dll", SourceKind::Executable},
    {L".icl", SourceKind::Executable}, {L".ocx", SourceKind::Executable},
    {L".cpl", SourceKind::Executable}, {L".scr", SourceKind::Executable},
};

std::optional<SourceKind> KindOf(const CString& path, std::string_view bytes)
{
    for (const KindMark& mark : kMarks) {
        if (bytes.starts_with(mark.start)) {
            return mark.kind;
        }
    }
    const std::wstring_view name = path;
    for (const KindEnding& known : kEndings) {
        const std::size_t length = known.ending.size();
        if (name.size() > length && EqualNoCase(name.substr(name.size() - length), known.ending)) {
            return known.kind;
        }
    }
    return std::nullopt;
}

/// Has the library tell that the file cannot be opened.
void ShowUnread(SourceKind kind, const CString& path)
{
    std::vector<NamedIconResource> none;
    switch (kind) {
    case SourceKind::Ico: FreeIconResource(CIcons().ReadIconFromICOFile(path.c_str())); break;
    case SourceKind::Bmp: (void)CDib::ReadFile(path.c_str()); break;
    case SourceKind::Executable: (void)CIcons().ReadIconsFromEXEFile(path.c_str(), none); break;
    default: break;
    }
}

/// Why a file could not be read.
const wchar_t* ReasonUnread(const CString& path)
{
    if (IsDirectory(path)) {
        return L"it is a directory, not a file";
    }
    return platform::FileExists(path) ? L"the file cannot be read" : L"there is no such file";
}

/// An icon of one image, whose bits it takes.
IconResourceOwner IconOf(OwnedImage image)
{
    IconResourceOwner icon(static_cast<ICONRESOURCE*>(std::calloc(1, sizeof(ICONRESOURCE))));
    if (icon == nullptr) {
        throw std::bad_alloc();
    }
    icon->imageCount = 1;
    icon->images[0] = image.Release();
    return icon;
}

} // namespace

IconSource::IconSource(CString path, LibraryMessages& messages) : m_path(std::move(path))
{
    std::string bytes;
    const bool isRead = platform::ReadWholeFile(m_path, bytes);
    const std::optional<SourceKind> kind = KindOf(m_path, bytes);
    if (!isRead) {
        if (kind) {
            ShowUnread(*kind, m_path);
        }
        throw FileError(m_path, ReasonUnread(m_path));
    }
    if (!kind) {
        throw FileError(m_path, L"it is no ICO, BMP or PNG file and no executable");
    }
    m_kind = *kind;
    switch (m_kind) {
    case SourceKind::Ico: ReadIco(messages); break;
    case SourceKind::Bmp: ReadBmp(bytes, messages); break;
    case SourceKind::Png: ReadPng(bytes); break;
    case SourceKind::Executable:
        if (!CIcons().ReadIconsFromEXEFile(m_path.c_str(), m_icons)) {
            messages.Fail(m_path, L"it is no executable of 32 or 64 bits");
        }
    }
}

void IconSource::ReadIco(LibraryMessages& messages)
{
    IconResourceOwner icon(CIcons().ReadIconFromICOFile(m_path.c_str()));
    if (icon == nullptr) {
        messages.Fail(m_path, L"it is no ICO file");
    }
    m_icons.push_back({L"", std::move(icon)});
}

void IconSource::ReadBmp(const std::string& bytes, LibraryMessages& messages)
{
    const std::vector<unsigned char> dib =
        HasLongBmpHeader(bytes) ? PackedBitmapOf(bytes) : CDib::ReadFile(m_path.c_str());
    std::optional<OwnedImage> image = ImageOfBitmap(dib);
    if (!image) {
        messages.Fail(m_path, L"the bitmap is damaged or compressed");
    }
    Add(std::move(*image));
}

void IconSource::ReadPng(const std::string& bytes)
{
    OwnedImage image;
    const auto* png = reinterpret_cast<const unsigned char*>(bytes.data());
    if (CIcons().IconImageFromPNG(&image.Image(), png, bytes.size()) == 0) {
        throw FileError(m_path, L"it is no PNG file, or is cut off in its header");
    }
    Add(std::move(image));
}

void IconSource::Add(OwnedImage image)
{
    m_icons.push_back({L"", IconOf(std::move(image))});
}

std::vector<ICONIMAGE*> ImagesOf(ICONRESOURCE& icon)
{
    std::vector<ICONIMAGE*> images;
    ICONIMAGE* const first = icon.images;
    for (uint32_t index = 0; index < icon.imageCount; ++index) {
        images.push_back(first + index);
    }
    return images;
}

bool IsPngImage(const ICONIMAGE& image)
{
    const std::string_view bytes(reinterpret_cast<const char*>(image.bits), image.byteCount);
    return bytes.starts_with(kMarks[0].start);
}

} // namespace encap::cli
