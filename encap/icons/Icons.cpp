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
    switch (platform::TryReplaceFile(path, bytes)) {
    case platform::Replacement::Done: return 1;
    case platform::Replacement::NotCreated:
        ShowIconMessage(path, IconMessage::CreateIconFile);
        return 0;
    case platform::Replacement::NotBegun:
        ShowIconMessage(path, IconMessage::WriteIconHeader);
        return 0;
    default: return 0; // a write that ends too early has no message
    }
}

using GroupEntries = std::vector<IconGroupEntry>;

std::optional<ByteView> ImageBytes(const PeResources& resources, const IconGroupEntry& entry)
{
    return resources.Find(kIconResourceType, {entry.imageId, {}});
}

std::optional<GroupEntries> FindGroup(const PeResources& resources, const wchar_t* groupName)
{
    const std::optional<ResourceName> name = ResourceName::FromPointer(groupName);
    const std::optional<ByteView> bytes =
        name ? resources.Find(kIconGroupResourceType, *name) : std::nullopt;
    return bytes ? ReadIconGroup(*bytes) : std::nullopt;
}

void ShowTwice(const CString& path, IconMessage inDoubleBytes, IconMessage message)
{
    ShowIconMessage(path, inDoubleBytes);
    ShowIconMessage(path, message);
}

/// The resources of the file, whose bytes must outlive them; shows when there are none to be had.
std::optional<PeResources> OpenResources(const CString& path, std::string& bytes)
{
    const bool isRead = platform::ReadWholeFile(path, bytes);
    std::optional<PeResources> resources =
        isRead ? PeResources::Open(AsBytes(bytes)) : std::nullopt;
    if (!resources) {
        ShowTwice(path, IconMessage::LoadExecutableInDoubleBytes, IconMessage::LoadExecutable);
    }
    return resources;
}

enum class GroupReading { Done, NoMemory, Missing, PastLimit, Malformed };

/// Takes the amount from the budget; false, with nothing left, when there is less.
bool Charge(uint64_t& budget, uint64_t amount)
{
    const bool fits = amount <= budget;
    budget = fits ? budget - amount : 0;
    return fits;
}

/// Copies every image of the group into a new record.
GroupReading ReadImages(const PeResources& resources, const GroupEntries& entries, uint64_t& budget,
                        OwnedIcon& icon)
{
    OwnedIcon made = MakeIconRecord(static_cast<uint32_t>(entries.size()));
    if (made == nullptr) {
        return GroupReading::NoMemory;
    }
    for (std::size_t index = 0; index < entries.size(); ++index) {
        ICONIMAGE& image = ImagesOf(*made)[index];
        const std::optional<ByteView> bytes = ImageBytes(resources, entries[index]);
        if (!bytes) {
            return GroupReading::Missing;
        }
        if (!Charge(budget, bytes->size())) {
            return GroupReading::PastLimit;
        }
        if (!CopyImageBits(image, *bytes)) {
            return GroupReading::Missing;
        }
        if (!AdjustIconImagePointers(&image)) {
            return GroupReading::Malformed;
        }
    }
    icon = std::move(made);
    return GroupReading::Done;
}

/// Bytes of a record and of its group's name.
uint64_t RecordBytes(const NamedIconResource& named, std::size_t imageCount)
{
    return sizeof named + named.name.size() * sizeof(wchar_t) + sizeof(ICONRESOURCE) +
           imageCount * sizeof(ICONIMAGE);
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
    const std::optional<PeResources> resources = OpenResources(path, bytes);
    const std::optional<GroupEntries> group =
        resources ? FindGroup(*resources, groupName) : std::nullopt;
    if (!group) {
        return nullptr;
    }
    OwnedIcon icon;
    uint64_t budget = bytes.size() * kMaxImageBytesPerFileByte;
    switch (ReadImages(*resources, *group, budget, icon)) {
    case GroupReading::Done: CopyFileName(icon->exeFileName, path); break;
    case GroupReading::NoMemory: ShowIconMessage(path, IconMessage::AllocateExecutableIcon); break;
    case GroupReading::Malformed:
        ShowTwice(path, IconMessage::TransformResourceInDoubleBytes,
                  IconMessage::TransformResource);
        break;
    default: break;
    }
    return icon.release();
}

bool CIcons::ReadIconsFromEXEFile(const wchar_t* file, std::vector<NamedIconResource>& icons) const
{
    icons.clear();
    const CString path = PathOf(file);
    std::string bytes;
    const std::optional<PeResources> resources = OpenResources(path, bytes);
    if (!resources) {
        return false;
    }
    uint64_t budget = bytes.size() * kMaxImageBytesPerFileByte;
    const auto read = [&](const ResourceName& name, std::optional<ByteView> group) {
        NamedIconResource& named = icons.emplace_back();
        named.name = name.AsText();
        const std::optional<GroupEntries> entries = group ? ReadIconGroup(*group) : std::nullopt;
        if (!Charge(budget, RecordBytes(named, entries ? entries->size() : 0))) {
            return false;
        }
        if (!entries) {
            return true;
        }
        const GroupReading reading = ReadImages(*resources, *entries, budget, named.icon);
        if (reading == GroupReading::Done) {
            CopyFileName(named.icon->exeFileName, path);
        }
        return reading != GroupReading::PastLimit;
    };
    resources->ForEach(kIconGroupResourceType, read);
    return true;
}

HICON CIcons::GetIconFromInstance(HINSTANCE executable, const wchar_t* groupName) const
{
    std::string storage;
    const std::string_view bytes = platform::ExecutableContent(executable, storage);
    const std::optional<PeResources> resources = PeResources::Open(AsBytes(bytes));
    const std::optional<GroupEntries> group =
        resources ? FindGroup(*resources, groupName) : std::nullopt;
    const IconGroupEntry* best = group ? BestIcon(*group) : nullptr;
    const std::optional<ByteView> image =
        best != nullptr ? ImageBytes(*resources, *best) : std::nullopt;
    return image ? MakeHandle(*image) : nullptr;
}

HICON CIcons::MakeIconFromResource(const ICONIMAGE* image) const
{
    return MakeHandle(BitsOf(image));
}

int CIcons::ConvertIconImage(ICONIMAGE* image, const ICONIMAGE* source) const
{
    return SetImageFromImage(image, BitsOf(source)) ? 1 : 0;
}

int CIcons::IconImageFromPNG(ICONIMAGE* image, const unsigned char* png, std::size_t size) const
{
    const ByteView bytes = png != nullptr ? ByteView(png, size) : ByteView();
    return SetImageFromPng(image, bytes) ? 1 : 0;
}

std::vector<unsigned char> CIcons::IconImageToPNG(const ICONIMAGE* image) const
{
    return PngOf(BitsOf(image));
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
