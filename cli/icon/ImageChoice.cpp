#include "cli/icon/ImageChoice.h"

#include "cli/CommandError.h"
#include "cli/Options.h"
#include "cli/icon/LibraryMessages.h"
#include "encap/foundation/CaseFolding.h"
#include "encap/foundation/NumberText.h"

#include <algorithm>
#include <limits>
#include <tuple>

namespace encap::cli {
namespace {

constexpr int32_t kMostSide = 2048;

CString Number(uint64_t number)
{
    return FormatInteger(static_cast<int64_t>(number));
}

CString ImageText(const ICONIMAGE& image)
{
    return SizeText(SizeOf(image)) + L" --bits " + Number(image.colours);
}

/// What there is, each once and not too many.
CString Listed(const std::vector<CString>& texts)
{
    constexpr std::size_t kMost = 12;
    CString list;
    std::vector<CString> told;
    for (const CString& text : texts) {
        if (std::find(told.begin(), told.end(), text) != told.end()) {
            continue;
        }
        if (told.size() == kMost) {
            return list + L", ...";
        }
        told.push_back(text);
        list += (list.empty() ? L"" : L", ") + text;
    }
    return list;
}

CString ListedNames(const IconSource& source)
{
    std::vector<CString> names;
    names.reserve(source.Icons().size());
    for (const NamedIconResource& icon : source.Icons()) {
        names.push_back(icon.name);
    }
    return Listed(names);
}

CString ListedImages(const std::vector<ICONIMAGE*>& images)
{
    std::vector<CString> texts;
    texts.reserve(images.size());
    for (const ICONIMAGE* image : images) {
        texts.push_back(ImageText(*image));
    }
    return Listed(texts);
}

} // namespace

ImageSize ParseSize(const CString& text)
{
    const std::size_t cross = text.find_first_of(L"xX");
    const std::optional<int32_t> width = ReadInteger(text.substr(0, cross));
    const std::optional<int32_t> height =
        cross == CString::npos ? width : ReadInteger(text.substr(cross + 1));
    const auto fits = [](const std::optional<int32_t>& side) {
        return side && *side >= 1 && *side <= kMostSide;
    };
    if (!fits(width) || !fits(height)) {
        throw UsageError(L"--size takes WIDTHxHEIGHT or a number for both, from 1 to 2048, not '" +
                         text + L'\'');
    }
    return {static_cast<uint32_t>(*width), static_cast<uint32_t>(*height)};
}

CString SizeText(const ImageSize& size)
{
    return Number(size.width) + L'x' + Number(size.height);
}

ImageSize SizeOf(const ICONIMAGE& image)
{
    return {image.width, image.height};
}

void ThrowDamaged(const ICONIMAGE& image, const CString& path)
{
    throw FileError(path, L"the image of " + SizeText(SizeOf(image)) +
                              L" pixels is damaged, or has too many of them");
}

uint64_t PixelCount(const ICONIMAGE& image)
{
    return uint64_t{image.width} * image.height;
}

bool IsBetterImage(const ICONIMAGE* left, const ICONIMAGE* right)
{
    return std::tuple(PixelCount(*left), left->colours) >
           std::tuple(PixelCount(*right), right->colours);
}

ICONIMAGE* BestImage(const std::vector<ICONIMAGE*>& images)
{
    const auto best = std::min_element(images.begin(), images.end(), IsBetterImage);
    return best != images.end() ? *best : nullptr;
}

void ImageChoice::DeclareIcon(Options& options)
{
    options.Text(m_name, "--name", "NAME",
                 "The icon of an executable, as list names it (default: the first)");
}

void ImageChoice::DeclareNumber(Options& options)
{
    options.Number(m_number, "--image", "NUMBER", 1, std::numeric_limits<int>::max(),
                   "The image of this number, the first being 1");
}

void ImageChoice::DeclareImage(Options& options)
{
    DeclareNumber(options);
    options.Text(m_size, "--size", "WxH", "The image of this size, as 32x32 or 32");
    options.Number(m_bits, "--bits", "BITS", 1, 64, "The image of this many bits per pixel");
}

bool ImageChoice::IsOfImage() const
{
    return m_number != 0 || m_size || m_bits != 0;
}

ICONRESOURCE& ImageChoice::Icon(const IconSource& source, LibraryMessages& messages) const
{
    if (m_name && source.Kind() != SourceKind::Executable) {
        throw UsageError(source.Path() + L": --name is for executables, and this is none");
    }
    const auto& icons = source.Icons();
    if (icons.empty()) {
        throw FileError(source.Path(), L"it has no icon");
    }
    auto found = icons.begin();
    if (m_name) {
        found = std::find_if(icons.begin(), icons.end(), [this](const NamedIconResource& icon) {
            return EqualNoCase(icon.name, *m_name);
        });
    }
    if (found == icons.end()) {
        throw UsageError(source.Path() + L": there is no icon \"" + *m_name + L"\"; there are " +
                         ListedNames(source));
    }
    if (found->icon == nullptr) {
        // Read by its name, a malformed icon is told by the library.
        FreeIconResource(CIcons().ReadIconFromEXEFile(source.Path().c_str(), found->name.c_str()));
        messages.Fail(source.Path(), L"the icon \"" + found->name + L"\" is damaged");
    }
    return *found->icon;
}

std::vector<ICONIMAGE*> ImageChoice::Images(const IconSource& source,
                                            LibraryMessages& messages) const
{
    const std::vector<ICONIMAGE*> all = ImagesOf(Icon(source, messages));
    if (all.empty()) {
        throw FileError(source.Path(), L"it has no images");
    }
    std::vector<ICONIMAGE*> chosen = all;
    if (m_number != 0) {
        const auto number = static_cast<std::size_t>(m_number);
        if (number > all.size()) {
            throw UsageError(source.Path() + L": --image: there is no image " + Number(number) +
                             L", there are " + Number(all.size()));
        }
        chosen = {all[number - 1]};
    }
    const ImageSize size = m_size ? ParseSize(*m_size) : ImageSize();
    const auto isOther = [&](const ICONIMAGE* image) {
        return (m_size && size != SizeOf(*image)) ||
               (m_bits != 0 && image->colours != static_cast<uint32_t>(m_bits));
    };
    chosen.erase(std::remove_if(chosen.begin(), chosen.end(), isOther), chosen.end());
    if (chosen.empty()) {
        throw UsageError(source.Path() + L": no image is like that; there are " +
                         ListedImages(all));
    }
    return chosen;
}

ICONIMAGE& ImageChoice::Image(const IconSource& source, LibraryMessages& messages) const
{
    return *BestImage(Images(source, messages));
}

} // namespace encap::cli
