#include "cli/CommandError.h"
#include "cli/Options.h"
#include "cli/icon/IconActions.h"
#include "cli/icon/ImageOutput.h"
#include "cli/icon/LibraryMessages.h"

namespace encap::cli {
namespace {

class BuildAction : public Command {
public:
    void Declare(Options& options) override;
    ExitStatus Run(Console& console) override;

private:
    std::vector<CString> m_paths;
    ImageOutput m_output;
};

void BuildAction::Declare(Options& options)
{
    options.Arguments(m_paths, "FILE", "ICO, BMP or PNG files, in the order of the images");
    m_output.Declare(options, "The ICO file to write");
    options.Footer("Every image of an ICO file is taken, byte for byte, and a PNG file as it is. A "
                   "BMP file becomes\nan image of its size and depth without transparency.");
}

ExitStatus BuildAction::Run(Console& console)
{
    if (m_output.Format() != ImageFormat::Ico) {
        throw UsageError(L"-o: build writes an ICO file, so its name ends in .ico");
    }
    LibraryMessages messages(console);
    std::vector<IconSource> sources;
    std::vector<ICONIMAGE*> images;
    for (const CString& path : m_paths) {
        const IconSource& source = sources.emplace_back(path, messages);
        m_output.RefuseToReplace(source);
        if (source.Kind() == SourceKind::Executable) {
            throw UsageError(path + L": an icon of an executable is taken out of it with extract");
        }
        for (ICONIMAGE* image : ImagesOf(*source.Icons().front().icon)) {
            RequireIconImage(*image, source);
            images.push_back(image);
        }
    }
    if (images.empty()) {
        throw FileError(m_paths.front(), L"it has no images");
    }
    m_output.WriteIco(images, messages);
    return ExitStatus::Done;
}

} // namespace

std::unique_ptr<Command> MakeIconBuildAction()
{
    return std::make_unique<BuildAction>();
}

} // namespace encap::cli
