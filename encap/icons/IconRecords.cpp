#include "encap/icons/IconRecords.h"

#include "encap/icons/OwnedIcon.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>

void FreeIconResource(ICONRESOURCE* icon)
{
    if (icon == nullptr) {
        return;
    }
    const ICONIMAGE* images = encap::ImagesOf(*icon);
    for (uint32_t index = 0; index < icon->imageCount; ++index) {
        std::free(images[index].bits);
    }
    std::free(icon);
}

namespace encap {

OwnedIcon MakeIconRecord(uint32_t imageCount)
{
    const std::size_t count = std::max<std::size_t>(imageCount, 1);
    void* memory = std::calloc(1, offsetof(ICONRESOURCE, images) + count * sizeof(ICONIMAGE));
    OwnedIcon icon(static_cast<ICONRESOURCE*>(memory));
    if (icon != nullptr) {
        icon->imageCount = imageCount;
    }
    return icon;
}

ICONIMAGE* ImagesOf(ICONRESOURCE& icon)
{
    return icon.images;
}

void CopyFileName(wchar_t (&target)[260], std::wstring_view name)
{
    const std::size_t length = std::min(name.size(), std::size(target) - 1);
    std::copy_n(name.begin(), length, target);
    target[length] = L'\0';
}

bool CopyImageBits(ICONIMAGE& image, ByteView bytes)
{
    // One byte at least: malloc(0) may give null without being out of memory.
    auto* bits = static_cast<unsigned char*>(std::malloc(std::max<std::size_t>(bytes.size(), 1)));
    if (bits == nullptr) {
        return false;
    }
    std::copy(bytes.begin(), bytes.end(), bits);
    image.bits = bits;
    image.byteCount = static_cast<uint32_t>(bytes.size());
    return true;
}

} // namespace encap
