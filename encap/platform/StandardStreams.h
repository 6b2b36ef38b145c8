#pragma once

#include <memory>
#include <string>
#include <vector>

namespace encap::platform {

/// The program's arguments in UTF-8, without its name. argc and argv are those of main.
[[nodiscard]] std::vector<std::string> ProgramArguments(int argc, const char* const* argv);

/// While it lives, standard output and standard error carry bytes as they are written, a console
/// reads them as UTF-8, and writing to a reader that went away fails instead of ending the program.
class StandardStreamsScope {
public:
    StandardStreamsScope();
    ~StandardStreamsScope();
    StandardStreamsScope(const StandardStreamsScope&) = delete;
    StandardStreamsScope& operator=(const StandardStreamsScope&) = delete;

private:
    struct Saved;
    std::unique_ptr<Saved> m_saved;
};

} // namespace encap::platform
