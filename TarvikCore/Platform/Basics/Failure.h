#pragma once

#include <exception>
#include <string>

namespace tarvik {

/// What every failing operation throws. `description()` is the one sentence that the user sees.
class Failure : public std::exception {
public:
    Failure(std::string domain, int code, std::string description);

    /// The subsystem that failed, such as "Files" or "FileCopier".
    const std::string& domain() const noexcept { return m_domain; }
    /// A number within the domain: errno for "Files", an exit status for a tool.
    int code() const noexcept { return m_code; }
    const std::string& description() const noexcept { return m_description; }
    const char* what() const noexcept override { return m_description.c_str(); }

private:
    std::string m_domain;
    int m_code;
    std::string m_description;
};

/// Runs a step that must not stop the main work: what it throws is dropped.
template <typename Step>
void ignoringFailure(Step&& step) noexcept {
    try {
        step();
    } catch (...) {  // The caller decided that this step does not matter.
        return;
    }
}

}  // namespace tarvik
