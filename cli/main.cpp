#include "cli/CommandLine.h"
#include "encap/platform/StandardStreams.h"

#include <iostream>

int main(int argc, char** argv)
{
    try {
        // A reader that goes away is then a failed write, which RunCommand reports.
        const encap::platform::StandardStreamsScope streams;
        std::ios::sync_with_stdio(false);
        return encap::cli::RunCommand(encap::platform::ProgramArguments(argc, argv), std::cout,
                                      std::cerr);
    } catch (...) {
        return 3;
    }
}
