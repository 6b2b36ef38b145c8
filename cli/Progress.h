#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

namespace encap::cli {

class Console;

/// "1200 of 2000 families, 98.3/s, 8 s left": the rate and the time left as those before would have
/// it; without them while nothing is done.
[[nodiscard]] std::string ProgressText(std::size_t done, std::size_t total, double seconds,
                                       std::string_view things);
/// "1 family", "3 families".
[[nodiscard]] std::string CountedText(std::size_t count, std::string_view one,
                                      std::string_view many);
/// "42 s", "3 min 20 s", "2 h 5 min".
[[nodiscard]] std::string DurationText(double seconds);
/// The same, below ten seconds with two digits: "0.034 s".
[[nodiscard]] std::string SecondsText(double seconds);
/// A number a second, with three digits: "98.3", "12300".
[[nodiscard]] std::string RateText(double count, double seconds);

/// Shows a progress line a few times a second on a terminal. Refers to the console.
class Progress {
public:
    Progress(Console& console, std::size_t total, std::string things);

    /// Called often.
    void Show(std::size_t done);
    /// Since the object was made.
    [[nodiscard]] double Seconds() const;

private:
    using Clock = std::chrono::steady_clock;

    Console& m_console;
    std::size_t m_total;
    std::string m_things;
    Clock::time_point m_start = Clock::now();
    Clock::time_point m_next = m_start;
};

} // namespace encap::cli
