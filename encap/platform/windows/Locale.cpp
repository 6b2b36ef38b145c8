#include "encap/platform/Locale.h"

#include "encap/platform/windows/WindowsHeaders.h"

namespace encap::platform {

wchar_t SystemDecimalSeparator()
{
    const int size = GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, LOCALE_SDECIMAL, nullptr, 0);
    CString separator(size > 0 ? static_cast<std::size_t>(size) : 1, L'\0');
    const bool isRead =
        GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, LOCALE_SDECIMAL, separator.data(), size) > 1;
    return isRead ? separator.front() : L'.';
}

int32_t SystemLocaleId()
{
    return static_cast<int32_t>(GetUserDefaultLCID());
}

} // namespace encap::platform
