#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik {

/// A report as lines of TOML: "key = value". In texts backslashes and quotation marks are escaped and nothing else is.
class TomlLines {
public:
    void text(std::string_view key, std::string_view value);
    void number(std::string_view key, std::int64_t value);
    void truth(std::string_view key, bool value);
    /// "key = ["a", "b"]".
    void array(std::string_view key, const std::vector<std::string>& values);
    /// "[name]": what follows is one record of that name.
    void beginTable(std::string_view name);
    /// "[[name]]": what follows is one record of a list.
    void beginRecord(std::string_view name);

    /// All lines, each with a line feed; a single line feed without any.
    std::string joined() const;

private:
    void add(std::string_view key, std::string_view value);

    std::string m_text;
};

}  // namespace tarvik
