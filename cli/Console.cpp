#include "cli/Console.h"

#include "cli/CommandError.h"
#include "cli/DisplayText.h"

#include <ostream>

namespace encap::cli {
namespace {

void RequireGood(const std::ostream& out)
{
    if (!out) {
        throw CommandError(ExitStatus::Failed,
                           L"the results cannot be written: standard output is closed or full");
    }
}

} // namespace

Console::Console(std::ostream& out, std::ostream& err) : m_out(out), m_err(err) {}

void Console::Write(std::string_view text)
{
    m_out.write(text.data(), static_cast<std::streamsize>(text.size()));
    RequireGood(m_out);
}

void Console::Message(std::string_view text)
{
    Message(platform::Utf8ToWide(text));
}

void Console::Message(std::wstring_view text)
{
    std::string line = "encap: ";
    AppendForDisplay(line, text);
    line += '\n';
    m_err.write(line.data(), static_cast<std::streamsize>(line.size()));
    m_err.flush();
}

void Console::Finish()
{
    m_out.flush();
    RequireGood(m_out);
}

} // namespace encap::cli
