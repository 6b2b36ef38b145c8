#include "cli/CommandError.h"
#include "cli/Options.h"
#include "cli/icon/IconActions.h"
#include "cli/icon/ImageConversion.h"
#include "cli/icon/ImageOutput.h"
#include "cli/icon/LibraryMessages.h"

#include <algorithm>

namespace encap::cli {
namespace {

enum Form : int { kAsItIs = -1, kBmp, kPng };

class ConvertAction : public Command {
public:
    void Declare(Options& options) override;
    ExitStatus Run(Console& console) override;

private:
    [[nodiscard]] std::vector<OwnedImage> Convert(const std::vector<ICONIMAGE*>& images,
                                                  bool isForIco) const;

    CString m_path;
    ImageChoice m_choice;
    std::vector<CString> m_sizes;
    ImageDepth m_depth;
    int m_form = kAsItIs;
    ImageOutput m_output;
};

void ConvertAction::Declare(Options& options)
{
    options.Argument(m_path, "FILE", "An ICO, BMP or PNG file, or an executable or library");
    m_choice.DeclareIcon(options);
    m_choice.DeclareNumber(options);
    options.Texts(m_sizes, "--size", "WxH",
                  "The new size, as 32x32 or 32; may be given several times for an ICO file");
    m_depth.Declare(options);
    options.Choice(m_form, "--form", {"bmp", "png"},
                   "How an ICO file stores the images: as rows or as whole PNG files");
    m_output.Declare(options, "The file to write; it ends in .ico, .bmp or .png");
    options.Footer("Without --size every image keeps its size, without --bits its depth (a PNG "
                   "image gets 32 bits\nwhere it is converted). Each size is made of the smallest "
                   "image that is at least as large, else of\nthe largest. Images that have the "
                   "size and the depth are kept byte for byte.");
}

ExitStatus ConvertAction::Run(Console& console)
{
    const bool isForIco = m_output.Format() == ImageFormat::Ico;
    if (!isForIco && (m_sizes.size() > 1 || m_form != kAsItIs)) {
        throw UsageError(L"several --size, and --form, are for ICO files; -o names another");
    }
    LibraryMessages messages(console);
    const IconSource source(m_path, messages);
    m_output.RefuseToReplace(source);
    std::vector<OwnedImage> converted = Convert(m_choice.Images(source, messages), isForIco);
    if (!isForIco) {
        m_output.WriteImage(converted.front().Image(), m_path, messages);
        return ExitStatus::Done;
    }
    std::vector<ICONIMAGE*> images;
    for (OwnedImage& image : converted) {
        RequireIconImage(image.Image(), source);
        images.push_back(&image.Image());
    }
    m_output.WriteIco(images, messages);
    return ExitStatus::Done;
}

std::vector<OwnedImage> ConvertAction::Convert(const std::vector<ICONIMAGE*>& images,
                                               bool isForIco) const
{
    std::vector<OwnedImage> converted;
    const auto convert = [&](const ICONIMAGE& image, const ImageSize& size) {
        OwnedImage result = Converted(image, size, m_depth.BitsFor(image), m_path);
        converted.push_back(m_form == kAsItIs ? std::move(result)
                                              : Stored(result.Image(), m_form == kPng, m_path));
    };
    for (const CString& text : m_sizes) {
        const ImageSize size = ParseSize(text);
        convert(BestFor(images, size), size);
    }
    if (m_sizes.empty() && !isForIco) {
        const ICONIMAGE& best = *BestImage(images);
        convert(best, SizeOf(best));
    } else if (m_sizes.empty()) {
        for (const ICONIMAGE* image : images) {
            convert(*image, SizeOf(*image));
        }
    }
    return converted;
}

} // namespace

std::unique_ptr<Command> MakeIconConvertAction()
{
    return std::make_unique<ConvertAction>();
}

} // namespace encap::cli
