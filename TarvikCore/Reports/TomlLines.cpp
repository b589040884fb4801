#include "Reports/TomlLines.h"

#include <fmt/format.h>

namespace tarvik {

namespace {

std::string quotedForToml(std::string_view text) {
    std::string quoted = "\"";
    for (const char character : text) {
        if (character == '\\' || character == '"') quoted += '\\';
        quoted += character;
    }
    return quoted + '"';
}

}  // namespace

void TomlLines::text(std::string_view key, std::string_view value) {
    add(key, quotedForToml(value));
}

void TomlLines::number(std::string_view key, std::int64_t value) {
    add(key, std::to_string(value));
}

void TomlLines::truth(std::string_view key, bool value) {
    add(key, value ? "true" : "false");
}

void TomlLines::array(std::string_view key, const std::vector<std::string>& values) {
    std::vector<std::string> quoted;
    quoted.reserve(values.size());
    for (const std::string& value : values) quoted.push_back(quotedForToml(value));
    add(key, fmt::format("[{}]", fmt::join(quoted, ", ")));
}

void TomlLines::beginTable(std::string_view name) {
    m_text += fmt::format("[{}]\n", name);
}

void TomlLines::beginRecord(std::string_view name) {
    m_text += fmt::format("[[{}]]\n", name);
}

std::string TomlLines::joined() const {
    return m_text.empty() ? "\n" : m_text;
}

void TomlLines::add(std::string_view key, std::string_view value) {
    m_text += fmt::format("{} = {}\n", key, value);
}

}  // namespace tarvik
