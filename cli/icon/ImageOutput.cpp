#include "cli/icon/ImageOutput.h"

#include "cli/CommandError.h"
#include "cli/Options.h"
#include "cli/Paths.h"
#include "cli/icon/LibraryMessages.h"
#include "encap/foundation/CaseFolding.h"
#include "encap/platform/Files.h"

#include <algorithm>
#include <iterator>

namespace encap::cli {
namespace {

struct FormatEnding {
    std::wstring_view ending;
    ImageFormat format;
};

constexpr FormatEnding kFormats[] = {
    {L".ico", ImageFormat::Ico},
    {L".bmp", ImageFormat::Bmp},
    {L".png", ImageFormat::Png},
};
constexpr const wchar_t* kUnwritten = L"the file cannot be written";

} // namespace

void ImageOutput::Declare(Options& options, const std::string& help)
{
    options.Text(m_path, "-o,--output", "FILE", help);
}

ImageFormat ImageOutput::Format() const
{
    if (m_path.empty()) {
        throw UsageError(L"-o FILE is required: it says where the result goes");
    }
    const std::wstring_view name = m_path;
    const auto hasEnding = [name](const FormatEnding& known) {
        const std::size_t length = known.ending.size();
        return name.size() > length && EqualNoCase(name.substr(name.size() - length), known.ending);
    };
    const auto* const found = std::find_if(std::begin(kFormats), std::end(kFormats), hasEnding);
    if (found == std::end(kFormats)) {
        throw UsageError(m_path + L": -o names no file that ends in .ico, .bmp or .png");
    }
    return found->format;
}

void ImageOutput::RefuseToReplace(const IconSource& source) const
{
    RequireNotRead(m_path, source.Path());
}

void ImageOutput::WriteIco(const std::vector<ICONIMAGE*>& images, LibraryMessages& messages) const
{
    if (CIcons().WriteIconToICOFile(images, m_path.c_str()) == 0) {
        messages.Fail(m_path, kUnwritten);
    }
}

void ImageOutput::WriteImage(ICONIMAGE& image, const CString& source,
                             LibraryMessages& messages) const
{
    const ImageFormat format = Format();
    if (format == ImageFormat::Ico) {
        WriteIco({&image}, messages);
        return;
    }
    if (!IsWholeImage(image)) {
        ThrowDamaged(image, source);
    }
    if (format == ImageFormat::Bmp) {
        if (CIcons().IconImageToBMPFile(m_path.c_str(), &image) == 0) {
            messages.Fail(m_path, kUnwritten);
        }
        return;
    }
    const std::vector<unsigned char> png = CIcons().IconImageToPNG(&image);
    const std::string_view bytes(reinterpret_cast<const char*>(png.data()), png.size());
    if (bytes.empty()) {
        ThrowDamaged(image, source);
    }
    if (!platform::ReplaceFileContent(m_path, bytes)) {
        throw FileError(m_path, kUnwritten);
    }
}

void RequireIconSize(const ICONIMAGE& image, const CString& source)
{
    constexpr uint32_t kMostSide = 256;
    if (image.width > kMostSide || image.height > kMostSide) {
        throw FileError(source, L"an image of " + SizeText(SizeOf(image)) +
                                    L" pixels is too large for an ICO file, which holds 256x256 "
                                    L"at most; convert --size makes it smaller");
    }
}

void RequireIconImage(const ICONIMAGE& image, const IconSource& source)
{
    RequireIconSize(image, source.Path());
    if (source.Kind() == SourceKind::Png && !IsWholeImage(image)) {
        ThrowDamaged(image, source.Path());
    }
}

bool IsWholeImage(const ICONIMAGE& image)
{
    HICON handle = CIcons().MakeIconFromResource(&image);
    ReleaseIcon(handle);
    return handle != nullptr;
}

} // namespace encap::cli
