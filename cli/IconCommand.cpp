#include "cli/IconCommand.h"

#include "cli/Options.h"
#include "cli/icon/IconActions.h"
#include "cli/icon/LibraryMessages.h"

#include <vector>

namespace encap::cli {
namespace {

constexpr CommandEntry kActions[] = {
    {"list", "Lists the images of an ICO, BMP or PNG file or of an executable.",
     MakeIconListAction},
    {"extract", "Takes an icon, or one image of it, out of a file.", MakeIconExtractAction},
    {"build", "Puts images together to an ICO file.", MakeIconBuildAction},
    {"convert", "Converts images to other sizes, depths and formats.", MakeIconConvertAction},
    {"copy", "Puts an image on the clipboard.", MakeIconCopyAction},
    {"paste", "Saves the image that is on the clipboard.", MakeIconPasteAction},
    {"show", "Draws an image in a terminal.", MakeIconShowAction},
};

class IconCommand : public Command {
public:
    void Declare(Options& options) override;
    ExitStatus Run(Console& console) override;

private:
    std::vector<std::unique_ptr<Command>> m_actions;
    Command* m_chosen = nullptr;
};

void IconCommand::Declare(Options& options)
{
    for (const CommandEntry& entry : kActions) {
        Command* const action = m_actions.emplace_back(entry.make()).get();
        action->Declare(
            options.Subcommand(entry.name, entry.summary, [this, action] { m_chosen = action; }));
    }
}

ExitStatus IconCommand::Run(Console& console)
{
    try {
        return m_chosen->Run(console);
    } catch (const MessagesShown&) {
        return ExitStatus::Failed;
    }
}

} // namespace

std::unique_ptr<Command> MakeIconCommand()
{
    return std::make_unique<IconCommand>();
}

} // namespace encap::cli
