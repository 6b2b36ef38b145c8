#include "encap/platform/StandardStreams.h"

#include <csignal>

namespace encap::platform {

std::vector<std::string> ProgramArguments(int argc, const char* const* argv)
{
    return argc > 1 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

struct StandardStreamsScope::Saved {
    void (*atClosedPipe)(int);
};

StandardStreamsScope::StandardStreamsScope()
    : m_saved(std::make_unique<Saved>(Saved{std::signal(SIGPIPE, SIG_IGN)}))
{
}

StandardStreamsScope::~StandardStreamsScope()
{
    std::signal(SIGPIPE, m_saved->atClosedPipe);
}

} // namespace encap::platform
