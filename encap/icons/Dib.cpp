#include "encap/icons/Dib.h"

#include "encap/icons/BmpFile.h"
#include "encap/icons/PixelConversion.h"
#include "encap/platform/Files.h"

#include <limits>
#include <string>

using encap::platform::Replacement;

namespace {

encap::ByteView View(const unsigned char* bytes, std::size_t size)
{
    return bytes != nullptr ? encap::ByteView(bytes, size) : encap::ByteView();
}

void Show(const CString& file, encap::IconMessage message)
{
    encap::ShowIconMessage(file, message, encap::MessageOwner::None);
}

} // namespace

uint64_t CDib::BytesPerLine(uint32_t width, uint32_t bitsPerPixel)
{
    return encap::BytesPerRow(width, bitsPerPixel);
}

uint32_t CDib::PaletteEntries(const unsigned char* dib)
{
    return encap::PaletteEntries(encap::ReadBitmapHeader(dib));
}

uint32_t CDib::PaletteSize(const unsigned char* dib)
{
    return PaletteEntries(dib) * 4;
}

uint64_t CDib::BitsOffset(const unsigned char* dib)
{
    return encap::RowsOffset(encap::ReadBitmapHeader(dib));
}

uint64_t CDib::PackedSize(const unsigned char* dib)
{
    const encap::BitmapHeader header = encap::ReadBitmapHeader(dib);
    const uint64_t offset = encap::RowsOffset(header);
    if (header.width <= 0 || !encap::IsBitmapDepth(header.bitCount)) {
        return offset;
    }
    const uint64_t perRow = BytesPerLine(static_cast<uint32_t>(header.width), header.bitCount);
    return offset + perRow * encap::RowCount(header.height);
}

std::vector<unsigned char> CDib::Convert(const unsigned char* dib, std::size_t size, uint32_t width,
                                         uint32_t height, uint32_t bitsPerPixel, bool stretch)
{
    const auto source = encap::PackedBitmap::Open(View(dib, size));
    if (!source) {
        return {};
    }
    return encap::ConvertBitmap(*source, {width, height, bitsPerPixel}, stretch);
}

std::vector<unsigned char> CDib::ReadFile(const wchar_t* file)
{
    const CString path = file != nullptr ? file : L"";
    std::string bytes;
    std::vector<unsigned char> dib;
    if (!encap::platform::ReadWholeFile(path, bytes)) {
        Show(path, encap::IconMessage::OpenBitmap);
    } else if (const auto message = encap::ReadBmp(encap::AsBytes(bytes), dib)) {
        Show(path, *message);
    }
    return dib;
}

bool CDib::WriteFile(const wchar_t* file, const unsigned char* dib, std::size_t size)
{
    const CString path = file != nullptr ? file : L"";
    const std::string bytes = encap::BuildBmp(View(dib, size));
    if (bytes.empty()) {
        Show(path, encap::IconMessage::WriteBitmap);
        return false;
    }
    const Replacement replacement = encap::platform::TryReplaceFile(path, bytes);
    if (replacement != Replacement::Done) {
        Show(path, replacement == Replacement::NotCreated ? encap::IconMessage::CreateBitmap
                                                          : encap::IconMessage::WriteBitmap);
    }
    return replacement == Replacement::Done;
}

std::vector<unsigned char> CDib::FromFileBytes(const unsigned char* bytes, std::size_t size)
{
    std::vector<unsigned char> dib;
    return encap::ReadBmp(View(bytes, size), dib) ? std::vector<unsigned char>() : dib;
}

std::vector<unsigned char> CDib::ToFileBytes(const unsigned char* dib, std::size_t size)
{
    const std::string bytes = encap::BuildBmp(View(dib, size));
    return {bytes.begin(), bytes.end()};
}
