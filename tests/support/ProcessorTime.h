#pragma once

#include <ctime>

namespace encap::test {

/// Measures the processor's time, which other programs on a busy machine disturb least.
class ProcessorTime {
public:
    [[nodiscard]] double Seconds() const
    {
        return static_cast<double>(std::clock() - m_start) / CLOCKS_PER_SEC;
    }

private:
    std::clock_t m_start = std::clock();
};

} // namespace encap::test
