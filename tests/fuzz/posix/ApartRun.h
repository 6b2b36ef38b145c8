#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace encap::test {

/// How a piece of work ended in a process of its own.
struct ApartRun {
    bool succeeded = false; ///< it came to its end
    std::string ending;     ///< "done", or what ended it
    uint64_t peakBytes = 0; ///< of memory, what the process began with left out
};

/// Runs the work in a copy of this process, which is ended after so many seconds.
[[nodiscard]] ApartRun RunApart(const std::function<void()>& work, unsigned seconds);

} // namespace encap::test
