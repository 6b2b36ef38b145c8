#include "cli/CommandLine.h"
#include "encap/platform/StandardStreams.h"

#include <cstdlib>
#include <iostream>

namespace {

int Run(int argc, char** argv, std::unique_ptr<encap::cli::Command>& command)
{
    try {
        // A reader that goes away is then a failed write, which RunCommand reports.
        const encap::platform::StandardStreamsScope streams;
        std::ios::sync_with_stdio(false);
        return encap::cli::RunCommand(encap::platform::ProgramArguments(argc, argv), std::cout,
                                      std::cerr, command);
    } catch (...) {
        return 3;
    }
}

} // namespace

int main(int argc, char** argv)
{
    std::unique_ptr<encap::cli::Command> command;
    const int status = Run(argc, argv, command);
    std::cout.flush();
    std::cerr.flush();
    // The system takes a large family back in one step, quicker than node by node.
    std::_Exit(status);
}
