#include "encap/icons/Icons.h"

#include "encap/icons/Dib.h"
#include "encap/icons/IcoFile.h"
#include "encap/icons/IconImage.h"
#include "encap/icons/PeResources.h"
#include "encap/platform/Clipboard.h"
#include "encap/platform/Files.h"

#include <algorithm>
#include <string>
#include <utility>

using namespace encap;

namespace {

CString PathOf(const wchar_t* file)
{
    return file != nullptr ? file : L"";
}

IcoReading ReadIcoFile(const CString& path)
{
    std::string bytes;
    if (!platform::ReadWholeFile(path, bytes)) {
        return {nullptr, ReadIcon_OpenFailed, MessageOf(ReadIcon_OpenFailed)};
    }
    return ReadIco(AsBytes(bytes), path);
}

HICON MakeHandle(ByteView bits)
{
    std::optional<PixelGrid> grid = HandlePixels(bits);
    if (!grid) {
        return nullptr;
    }
    return platform::CreateIconHandle(grid->width, grid->height, std::move(grid->pixels));
}

/// One handle an image, null for those that cannot be made or no longer fit the file's limit.
void MakeHandles(ICONRESOURCE& icon, HICON* handles)
{
    uint64_t pixelsLeft = kMaxFilePixels;
    const ICONIMAGE* images = ImagesOf(icon);
    for (uint32_t index = 0; index < icon.imageCount; ++index) {
        const ICONIMAGE& image = images[index];
        handles[index] = nullptr;
        // What an image claims is charged before it is decoded, since damage may show up late.
        const uint64_t pixels = std::min(uint64_t{image.width} * image.height, kMaxHandlePixels);
        if (pixels <= pixelsLeft) {
            pixelsLeft -= pixels;
            handles[index] = MakeHandle(BitsOf(&image));
        }
    }
}

std::vector<const ICONIMAGE*> ImagesIn(const ICONRESOURCE& icon)
{
    std::vector<const ICONIMAGE*> images;
    const ICONIMAGE* first = icon.images;
    for (uint32_t index = 0; index < icon.imageCount; ++index) {
        images.push_back(first + index);
    }
    return images;
}

std::vector<const ICONIMAGE*> ImagesIn(const std::vector<ICONIMAGE*>& images)
{
    return {images.begin(), images.end()};
}

int WriteIcoFile(const std::vector<const ICONIMAGE*>& images, const CString& path)
{
    std::string bytes;
    const IcoBuild build = BuildIco(images, bytes);
    if (build == IcoBuild::TooManyImages) {
        ShowIconMessage(path, IconMessage::WriteIconHeader);
    }
    if (build != IcoBuild::Done) {
        return 0;
    }
    if (!platform::ReplaceFileContent(path, bytes)) {
        ShowIconMessage(path, IconMessage::CreateIconFile);
        return 0;
    }
    return 1;
}

/// A group and the tree that its images are found in.
struct IconGroup {
    PeResources resources;
    std::vector<IconGroupEntry> entries;

    [[nodiscard]] std::optional<ByteView> ImageBytes(const IconGroupEntry& entry) const
    {
        return resources.Find(kIconResourceType, {entry.imageId, {}});
    }
};

std::optional<IconGroup> FindGroup(PeResources resources, const wchar_t* groupName)
{
    const std::optional<ResourceName> name = ResourceName::FromPointer(groupName);
    if (!name) {
        return std::nullopt;
    }
    const std::optional<ByteView> bytes = resources.Find(kIconGroupResourceType, *name);
    std::optional<std::vector<IconGroupEntry>> entries =
        bytes ? ReadIconGroup(*bytes) : std::nullopt;
    if (!entries) {
        return std::nullopt;
    }
    return IconGroup{std::move(resources), std::move(*entries)};
}

void ShowTwice(const CString& path, IconMessage inDoubleBytes, IconMessage message)
{
    ShowIconMessage(path, inDoubleBytes);
    ShowIconMessage(path, message);
}

/// Copies every image of the group into the record; shows a malformed one.
bool CopyImages(const IconGroup& group, ICONRESOURCE& icon, uint64_t budget, const CString& path)
{
    for (std::size_t index = 0; index < group.entries.size(); ++index) {
        ICONIMAGE& image = ImagesOf(icon)[index];
        const std::optional<ByteView> bytes = group.ImageBytes(group.entries[index]);
        if (!bytes || bytes->size() > budget || !CopyImageBits(image, *bytes)) {
            return false;
        }
        budget -= bytes->size();
        if (!AdjustIconImagePointers(&image)) {
            ShowTwice(path, IconMessage::TransformResourceInDoubleBytes,
                      IconMessage::TransformResource);
            return false;
        }
    }
    return true;
}

} // namespace

CIcons::~CIcons() = default;

ICONRESOURCE* CIcons::ReadIconFromICOFile(const wchar_t* file) const
{
    const CString path = PathOf(file);
    IcoReading reading = ReadIcoFile(path);
    if (reading.error != ReadIcon_Success) {
        ShowIconMessage(path, reading.message);
    }
    return reading.icon.release();
}

ICONRESOURCE* CIcons::ReadIconFromICOFile(const wchar_t* file, HICON* icons) const
{
    Error_ReadIconFromICOFile error = ReadIcon_Success;
    ICONRESOURCE* icon = ReadIconFromICOFile(file, icons, error);
    if (error != ReadIcon_Success) {
        ShowIconMessage(PathOf(file), MessageOf(error));
    }
    return icon;
}

ICONRESOURCE* CIcons::ReadIconFromICOFile(const wchar_t* file, HICON* icons,
                                          Error_ReadIconFromICOFile& error) const
{
    IcoReading reading = ReadIcoFile(PathOf(file));
    error = reading.error;
    if (reading.icon != nullptr && icons != nullptr) {
        MakeHandles(*reading.icon, icons);
    }
    return reading.icon.release();
}

int CIcons::WriteIconToICOFile(const ICONRESOURCE* icon, const wchar_t* file) const
{
    return icon != nullptr ? WriteIcoFile(ImagesIn(*icon), PathOf(file)) : 0;
}

int CIcons::WriteIconToICOFile(const std::vector<ICONIMAGE*>& images, const wchar_t* file) const
{
    return WriteIcoFile(ImagesIn(images), PathOf(file));
}

uint32_t CIcons::CalculateImageOffset(const ICONRESOURCE* icon, unsigned int index) const
{
    return icon != nullptr ? ImageOffset(ImagesIn(*icon), index) : 0;
}

uint32_t CIcons::CalculateImageOffset(const std::vector<ICONIMAGE*>& images,
                                      unsigned int index) const
{
    return ImageOffset(ImagesIn(images), index);
}

ICONRESOURCE* CIcons::ReadIconFromEXEFile(const wchar_t* file, const wchar_t* groupName) const
{
    const CString path = PathOf(file);
    std::string bytes;
    const bool isRead = platform::ReadWholeFile(path, bytes);
    std::optional<PeResources> resources = PeResources::Open(AsBytes(bytes));
    if (!isRead || !resources) {
        ShowTwice(path, IconMessage::LoadExecutableInDoubleBytes, IconMessage::LoadExecutable);
        return nullptr;
    }
    const std::optional<IconGroup> group = FindGroup(std::move(*resources), groupName);
    if (!group) {
        return nullptr;
    }
    OwnedIcon icon = MakeIconRecord(static_cast<uint32_t>(group->entries.size()));
    if (icon == nullptr) {
        ShowIconMessage(path, IconMessage::AllocateExecutableIcon);
        return nullptr;
    }
    CopyFileName(icon->exeFileName, path);
    const uint64_t budget = bytes.size() * kMaxImageBytesPerFileByte;
    return CopyImages(*group, *icon, budget, path) ? icon.release() : nullptr;
}

HICON CIcons::GetIconFromInstance(HINSTANCE executable, const wchar_t* groupName) const
{
    std::string storage;
    const std::string_view bytes = platform::ExecutableContent(executable, storage);
    std::optional<PeResources> resources = PeResources::Open(AsBytes(bytes));
    if (!resources) {
        return nullptr;
    }
    const std::optional<IconGroup> group = FindGroup(std::move(*resources), groupName);
    const IconGroupEntry* best = group ? BestIcon(group->entries) : nullptr;
    const std::optional<ByteView> image = best != nullptr ? group->ImageBytes(*best) : std::nullopt;
    return image ? MakeHandle(*image) : nullptr;
}

HICON CIcons::MakeIconFromResource(const ICONIMAGE* image) const
{
    return MakeHandle(BitsOf(image));
}

int CIcons::IconImageToClipBoard(const ICONIMAGE* image) const
{
    const platform::ClipboardBitmap bitmap = PackedBitmapOf(BitsOf(image));
    return platform::OfferClipboardBitmap(bitmap) && !bitmap.empty() ? 1 : 0;
}

int CIcons::IconImageFromClipBoard(ICONIMAGE* image, int stretch) const
{
    platform::ClipboardBitmap bitmap;
    return platform::TakeClipboardBitmap(bitmap) && SetImageFromBitmap(image, bitmap, stretch != 0);
}

int CIcons::DIBToIconImage(ICONIMAGE* image, const unsigned char* dib, int stretch) const
{
    const uint64_t size = dib != nullptr ? CDib::PackedSize(dib) : 0;
    return DIBToIconImage(image, dib, static_cast<std::size_t>(size), stretch);
}

int CIcons::DIBToIconImage(ICONIMAGE* image, const unsigned char* dib, std::size_t size,
                           int stretch) const
{
    const ByteView bytes = dib != nullptr ? ByteView(dib, size) : ByteView();
    return SetImageFromBitmap(image, bytes, stretch != 0) ? 1 : 0;
}

int CIcons::IconImageFromBMPFile(const wchar_t* file, ICONIMAGE* image, int stretch) const
{
    const std::vector<unsigned char> dib = CDib::ReadFile(file);
    return SetImageFromBitmap(image, dib, stretch != 0) ? 1 : 0;
}

int CIcons::IconImageToBMPFile(const wchar_t* file, const ICONIMAGE* image) const
{
    const ByteView bits = BitsOf(image);
    if (bits.empty()) {
        return 0;
    }
    const std::vector<unsigned char> dib = PackedBitmapOf(bits);
    return CDib::WriteFile(file, dib.data(), dib.size()) ? 1 : 0;
}
