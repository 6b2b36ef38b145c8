#pragma once

#include "encap/foundation/Types.h"

namespace encap::platform {

/// The decimal separator of the user's locale, read from the environment at each call; "." where
/// there is no locale service.
[[nodiscard]] wchar_t UserDecimalSeparator();
/// A stable number of the user's locale: the customary locale identifier (1031 for de_DE) where one
/// is known, which on Windows is always. Elsewhere 127 for C and POSIX, else a hash of the name
/// with bit 16 set.
[[nodiscard]] int32_t UserLocaleId();

/// The system's own answers, whatever ScopedUserLocale says.
[[nodiscard]] wchar_t SystemDecimalSeparator();
[[nodiscard]] int32_t SystemLocaleId();

/// Replaces the user's locale on this thread while it lives, so that tests do not depend on the
/// machine's locales. Objects nest.
class ScopedUserLocale {
public:
    ScopedUserLocale(wchar_t decimalSeparator, int32_t localeId);
    ~ScopedUserLocale();
    ScopedUserLocale(const ScopedUserLocale&) = delete;
    ScopedUserLocale& operator=(const ScopedUserLocale&) = delete;

private:
    bool m_wasActive;
    wchar_t m_previousSeparator;
    int32_t m_previousId;
};

} // namespace encap::platform
