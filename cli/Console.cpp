#include "cli/Console.h"

#include "cli/CommandError.h"
#include "cli/DisplayText.h"
#include "encap/platform/Terminal.h"

#include <iostream>

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

Console::Console(std::ostream& out, std::ostream& err)
    : m_out(out), m_err(err),
      m_errIsTerminal(&err == &std::cerr && platform::StandardErrorIsTerminal())
{
}

void Console::Write(std::string_view text)
{
    ClearProgress();
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
    ClearProgress();
    m_err.write(line.data(), static_cast<std::streamsize>(line.size()));
    m_err.flush();
}

void Console::Progress(std::string_view text)
{
    if (!m_errIsTerminal) {
        return;
    }
    ClearProgress();
    m_err << text << std::flush;
    m_progressLength = text.size();
}

std::optional<platform::TerminalSize> Console::OutputTerminal() const
{
    return &m_out == &std::cout ? platform::StandardOutputTerminal() : std::nullopt;
}

void Console::Finish()
{
    ClearProgress();
    m_out.flush();
    RequireGood(m_out);
}

// Blanks rather than a terminal's own codes: every terminal knows them.
void Console::ClearProgress()
{
    if (m_progressLength > 0) {
        m_err << '\r' << std::string(m_progressLength, ' ') << '\r' << std::flush;
        m_progressLength = 0;
    }
}

} // namespace encap::cli
