#include "cli/CommandLine.h"

#include <csignal>
#include <iostream>

int main(int argc, char** argv)
{
#ifdef SIGPIPE
    // A reader that goes away is then a failed write, which RunCommand reports.
    std::signal(SIGPIPE, SIG_IGN);
#endif
    try {
        std::ios::sync_with_stdio(false);
        std::vector<std::string> arguments;
        for (int i = 1; i < argc; ++i) {
            arguments.emplace_back(argv[i]);
        }
        return encap::cli::RunCommand(arguments, std::cout, std::cerr);
    } catch (...) {
        return 3;
    }
}
