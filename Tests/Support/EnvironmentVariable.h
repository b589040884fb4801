#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace tarvik::test {

/// Sets a variable of the environment, or takes it away, until the end of the object's life.
class EnvironmentVariable {
public:
    EnvironmentVariable(std::string name, const std::optional<std::string>& value) : m_name(std::move(name)) {
        if (const char* before = std::getenv(m_name.c_str())) m_before = before;
        set(value);
    }
    ~EnvironmentVariable() { set(m_before); }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

private:
    void set(const std::optional<std::string>& value) const {
        if (value)
            ::setenv(m_name.c_str(), value->c_str(), 1);
        else
            ::unsetenv(m_name.c_str());
    }

    std::string m_name;
    std::optional<std::string> m_before;
};

}  // namespace tarvik::test
