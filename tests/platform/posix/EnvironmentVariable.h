#pragma once

#include <cstdlib>
#include <optional>
#include <string>

/// Sets an environment variable (removes it for null) and puts it back with the object.
class EnvironmentVariable {
public:
    EnvironmentVariable(const char* name, const char* value) : m_name(name)
    {
        if (const char* const old = std::getenv(name)) {
            m_old = old;
        }
        Set(value);
    }
    ~EnvironmentVariable() { Set(m_old ? m_old->c_str() : nullptr); }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

private:
    void Set(const char* value)
    {
        if (value != nullptr) {
            setenv(m_name, value, 1);
        } else {
            unsetenv(m_name);
        }
    }

    const char* m_name;
    std::optional<std::string> m_old;
};
