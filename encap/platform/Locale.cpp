#include "encap/platform/Locale.h"

namespace encap::platform {
namespace {

struct LocaleOverride {
    bool active = false;
    wchar_t decimalSeparator = L'.';
    int32_t localeId = 0;
};

/// Per thread, so that tests that run side by side do not see each other's locale.
thread_local LocaleOverride g_override;

} // namespace

wchar_t UserDecimalSeparator()
{
    return g_override.active ? g_override.decimalSeparator : SystemDecimalSeparator();
}

int32_t UserLocaleId()
{
    return g_override.active ? g_override.localeId : SystemLocaleId();
}

ScopedUserLocale::ScopedUserLocale(wchar_t decimalSeparator, int32_t localeId)
    : m_wasActive(g_override.active), m_previousSeparator(g_override.decimalSeparator),
      m_previousId(g_override.localeId)
{
    g_override = {true, decimalSeparator, localeId};
}

ScopedUserLocale::~ScopedUserLocale()
{
    g_override = {m_wasActive, m_previousSeparator, m_previousId};
}

} // namespace encap::platform
