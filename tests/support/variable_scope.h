#pragma once

#include <cstdlib>
#include <optional>
#include <string>

/// Gives a variable of the environment another value, or none, for a while.
class VariableScope
{
public:
    VariableScope(const char* name, const char* value) : m_name(name)
    {
        if (const char* before = std::getenv(name))
            m_before = before;
        put(value);
    }
    ~VariableScope() { put(m_before ? m_before->c_str() : nullptr); }
    VariableScope(const VariableScope&) = delete;
    VariableScope& operator=(const VariableScope&) = delete;

private:
    void put(const char* value) { value ? ::setenv(m_name, value, 1) : ::unsetenv(m_name); }

    const char* m_name; // literal
    std::optional<std::string> m_before;
};
