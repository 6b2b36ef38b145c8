#include "cli/Options.h"
#include "cli/icon/IconActions.h"
#include "cli/icon/ImageOutput.h"
#include "cli/icon/LibraryMessages.h"

namespace encap::cli {
namespace {

class ExtractAction : public Command {
public:
    void Declare(Options& options) override;
    ExitStatus Run(Console& console) override;

private:
    CString m_path;
    ImageChoice m_choice;
    ImageOutput m_output;
};

void ExtractAction::Declare(Options& options)
{
    options.Argument(m_path, "FILE", "An ICO, BMP or PNG file, or an executable or library");
    m_choice.DeclareIcon(options);
    m_choice.DeclareImage(options);
    m_output.Declare(options, "The file to write; it ends in .ico, .bmp or .png");
    options.Footer("An ICO file gets all images of the icon unless one is asked for, byte for "
                   "byte. BMP and PNG\nfiles get one: of those that fit, the largest and deepest. "
                   "A BMP file has no transparency.");
}

ExitStatus ExtractAction::Run(Console& console)
{
    const ImageFormat format = m_output.Format();
    LibraryMessages messages(console);
    const IconSource source(m_path, messages);
    m_output.RefuseToReplace(source);
    const bool isIcon = source.Kind() == SourceKind::Ico || source.Kind() == SourceKind::Executable;
    if (format == ImageFormat::Ico && !isIcon) {
        RequireIconImage(m_choice.Image(source, messages), source);
    }
    if (format == ImageFormat::Ico && !m_choice.IsOfImage()) {
        m_output.WriteIco(m_choice.Images(source, messages), messages);
    } else {
        m_output.WriteImage(m_choice.Image(source, messages), m_path, messages);
    }
    return ExitStatus::Done;
}

} // namespace

std::unique_ptr<Command> MakeIconExtractAction()
{
    return std::make_unique<ExtractAction>();
}

} // namespace encap::cli
