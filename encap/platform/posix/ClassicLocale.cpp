#include "encap/platform/ClassicLocale.h"

#include <locale.h> // NOLINT(modernize-deprecated-headers): newlocale is in POSIX's

namespace encap::platform {

struct ClassicLocaleScope::Saved {
    locale_t classic;
    locale_t previous;
};

ClassicLocaleScope::ClassicLocaleScope() : m_saved(std::make_unique<Saved>())
{
    m_saved->classic = newlocale(LC_ALL_MASK, "C", locale_t{});
    if (m_saved->classic != locale_t{}) {
        m_saved->previous = uselocale(m_saved->classic);
    }
}

ClassicLocaleScope::~ClassicLocaleScope()
{
    if (m_saved->classic != locale_t{}) {
        uselocale(m_saved->previous);
        freelocale(m_saved->classic);
    }
}

} // namespace encap::platform
