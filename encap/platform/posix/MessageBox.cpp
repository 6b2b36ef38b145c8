#include "encap/platform/MessageBox.h"

namespace encap::platform {

// There is no window system that every host shares, so only a hook shows anything.
void ShowSystemMessageBox(const MessageBoxRequest&) {}

} // namespace encap::platform
