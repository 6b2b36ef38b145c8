#pragma once

#include <memory>

namespace encap::platform {

/// Gives this thread the "C" locale while it lives, for calls into libraries that read numbers with
/// the C library's locale-dependent functions. The process's locale and other threads are left
/// alone. Not available (nothing changes) where the system has no locale per thread.
class ClassicLocaleScope {
public:
    ClassicLocaleScope();
    ~ClassicLocaleScope();
    ClassicLocaleScope(const ClassicLocaleScope&) = delete;
    ClassicLocaleScope& operator=(const ClassicLocaleScope&) = delete;

private:
    struct Saved;
    std::unique_ptr<Saved> m_saved;
};

} // namespace encap::platform
