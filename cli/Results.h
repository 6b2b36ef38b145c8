#pragma once

#include "encap/foundation/Types.h"

#include <string>

namespace encap::cli {

class Console;

/// Where the results of a command go: standard output piece by piece or, when a path is given, a
/// file that is replaced as one step at the end. Refers to the console.
class Results {
public:
    /// An empty path is standard output.
    Results(Console& console, CString path);
    Results(const Results&) = delete;
    Results& operator=(const Results&) = delete;

    /// UTF-8; commands append to it.
    [[nodiscard]] std::string& Text() { return m_text; }
    /// Called once in a while, as after a row: hands text over when there is enough of it. Throws
    /// CommandError when it is not taken.
    void Pass();
    /// As Pass, whatever there is, down to the system: for results that come slowly.
    void PassNow();
    /// Hands over the rest. Throws CommandError when it is not taken; the old file is then whole.
    void Finish();

private:
    Console& m_console;
    CString m_path;
    std::string m_text;
};

} // namespace encap::cli
