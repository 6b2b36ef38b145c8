#pragma once

#include "encap/platform/Terminal.h"

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string_view>

namespace encap::cli {

/// The two streams of one run of the program; refers to them.
class Console {
public:
    Console(std::ostream& out, std::ostream& err);
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    /// Results, UTF-8. Throws CommandError when the stream does not take them.
    void Write(std::string_view text);
    /// One line "encap: ..." for the user: UTF-8 or wide; line breaks and other control characters
    /// are shown as their pictures.
    void Message(std::string_view text);
    void Message(std::wstring_view text);
    /// Shows a line that the next one, or anything else that is written, takes the place of; on a
    /// terminal only. Not longer than a terminal is wide.
    void Progress(std::string_view text);
    /// The terminal that the results go to; nothing when they go elsewhere.
    [[nodiscard]] std::optional<platform::TerminalSize> OutputTerminal() const;
    /// Hands everything to the system. Throws CommandError when it does not take it.
    void Finish();

private:
    void ClearProgress();

    std::ostream& m_out;
    std::ostream& m_err;
    bool m_errIsTerminal;
    std::size_t m_progressLength = 0; ///< of the line that is shown
};

} // namespace encap::cli
