#include "cli/icon/LibraryMessages.h"

#include "cli/CommandError.h"
#include "cli/Console.h"

namespace encap::cli {

LibraryMessages::LibraryMessages(Console& console)
    : m_previous(
          platform::SetMessageBoxHook([this, &console](const platform::MessageBoxRequest& request) {
              ++m_count;
              console.Message(request.caption + L": " + request.text);
          }))
{
}

LibraryMessages::~LibraryMessages()
{
    platform::SetMessageBoxHook(m_previous);
}

void LibraryMessages::Fail(const CString& path, std::wstring_view reason)
{
    if (m_count.exchange(0) > 0) {
        throw MessagesShown();
    }
    throw FileError(path, reason);
}

} // namespace encap::cli
