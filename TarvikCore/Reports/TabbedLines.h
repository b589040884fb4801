#pragma once

#include <fmt/format.h>

#include <initializer_list>
#include <string>
#include <string_view>

namespace tarvik {

/// A report as lines with tabs between the fields, none of which is escaped.
class TabbedLines {
public:
    void line(std::initializer_list<std::string_view> fields) {
        m_text += fmt::format("{}\n", fmt::join(fields, "\t"));
    }

    /// All lines, each with a line feed; a single line feed without any.
    std::string joined() const { return m_text.empty() ? "\n" : m_text; }

private:
    std::string m_text;
};

}  // namespace tarvik
