#pragma once

#include <regex.h>
#include <string>

namespace tarvik::pkgutil {

/// An extended regular expression, as re_format(7) of a Mac tells.
class Pattern {
public:
    explicit Pattern(const std::string& text);
    ~Pattern();
    Pattern(const Pattern&) = delete;
    Pattern& operator=(const Pattern&) = delete;

    /// What is wrong with the text; empty when nothing is.
    const std::string& complaint() const { return m_complaint; }
    /// Whether it fits the whole identifier.
    bool fits(const std::string& identifier) const;

private:
    regex_t m_expression{};
    std::string m_complaint;
};

}  // namespace tarvik::pkgutil
