#include "encap/platform/MessageBox.h"

#include "encap/platform/windows/MainWindow.h"

namespace encap::platform {

void ShowSystemMessageBox(const MessageBoxRequest& request)
{
    MessageBoxW(request.owned ? MainWindow() : nullptr, request.text.c_str(),
                request.caption.c_str(), MB_OK);
}

} // namespace encap::platform
