#include "cli/Progress.h"

#include "cli/Console.h"
#include "encap/foundation/NumberText.h"
#include "encap/platform/Encoding.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace encap::cli {

std::string CountedText(std::size_t count, std::string_view one, std::string_view many)
{
    return std::to_string(count).append(" ").append(count == 1 ? one : many);
}

std::string DurationText(double seconds)
{
    constexpr int64_t kMinute = 60;
    constexpr int64_t kHour = 3600;
    constexpr double kLongest = 1e9;
    const auto whole = static_cast<int64_t>(std::ceil(std::clamp(seconds, 0.0, kLongest)));
    if (whole >= kHour) {
        return std::to_string(whole / kHour) + " h " + std::to_string(whole % kHour / kMinute) +
               " min";
    }
    if (whole >= kMinute) {
        return std::to_string(whole / kMinute) + " min " + std::to_string(whole % kMinute) + " s";
    }
    return std::to_string(whole) + " s";
}

std::string SecondsText(double seconds)
{
    constexpr double kShort = 10.0;
    constexpr int kDigits = 2;
    return seconds < kShort ? platform::WideToUtf8(FormatGeneral(seconds, kDigits)) + " s"
                            : DurationText(seconds);
}

std::string RateText(double count, double seconds)
{
    const double rate = count / std::max(seconds, 1e-6);
    constexpr double kWhole = 100.0;
    constexpr int kDigits = 3;
    return rate >= kWhole ? std::to_string(std::llround(rate))
                          : platform::WideToUtf8(FormatGeneral(rate, kDigits));
}

std::string ProgressText(std::size_t done, std::size_t total, double seconds,
                         std::string_view things)
{
    std::string text = std::to_string(done);
    text.append(" of ").append(std::to_string(total)).append(" ").append(things);
    if (done > 0) {
        const double left = seconds / static_cast<double>(done) * static_cast<double>(total - done);
        text.append(", ").append(RateText(static_cast<double>(done), seconds)).append("/s, ");
        text.append(DurationText(left)).append(" left");
    }
    return text;
}

Progress::Progress(Console& console, std::size_t total, std::string things)
    : m_console(console), m_total(total), m_things(std::move(things))
{
}

void Progress::Show(std::size_t done)
{
    constexpr std::chrono::milliseconds kInterval{200};
    const Clock::time_point now = Clock::now();
    if (now < m_next) {
        return;
    }
    m_next = now + kInterval;
    m_console.Progress(ProgressText(done, m_total, Seconds(), m_things));
}

double Progress::Seconds() const
{
    return std::chrono::duration<double>(Clock::now() - m_start).count();
}

} // namespace encap::cli
