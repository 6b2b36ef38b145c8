#pragma once

#include <iosfwd>
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
    /// Hands everything to the system. Throws CommandError when it does not take it.
    void Finish();

private:
    std::ostream& m_out;
    std::ostream& m_err;
};

} // namespace encap::cli
