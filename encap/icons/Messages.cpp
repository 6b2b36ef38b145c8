#include "encap/icons/Messages.h"

#include "encap/platform/MessageBox.h"

namespace encap {

void ShowIconMessage(std::wstring_view file, IconMessage message, MessageOwner owner)
{
    platform::MessageBoxRequest request;
    request.caption = file;
    request.text = kIconMessages[static_cast<std::size_t>(message)];
    request.owned = owner == MessageOwner::MainWindow;
    platform::ShowMessageBox(request);
}

} // namespace encap
