#include "cli/Results.h"

#include "cli/CommandError.h"
#include "cli/Console.h"
#include "encap/platform/Files.h"

#include <utility>

namespace encap::cli {
namespace {

constexpr std::size_t kPiece = std::size_t{1} << 20;

} // namespace

Results::Results(Console& console, CString path) : m_console(console), m_path(std::move(path)) {}

void Results::Pass()
{
    if (m_path.empty() && m_text.size() >= kPiece) {
        m_console.Write(m_text);
        m_text.clear();
    }
}

void Results::PassNow()
{
    if (m_path.empty()) {
        m_console.Write(m_text);
        m_console.Finish();
        m_text.clear();
    }
}

void Results::Finish()
{
    if (m_path.empty()) {
        m_console.Write(m_text);
    } else if (!platform::ReplaceFileContent(m_path, m_text)) {
        throw FileError(m_path, L"the file cannot be written");
    }
    m_text.clear();
}

} // namespace encap::cli
