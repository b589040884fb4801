#include "CommandLine/Output/Records.h"

#include "Platform/Text/Text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <toml++/toml.h>

#include <sstream>
#include <utility>

namespace tarvik::CommandLine {

namespace {

std::string escaped(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (const char byte : text) {
        switch (byte) {
            case '\t':
                result += "\\t";
                break;
            case '\n':
                result += "\\n";
                break;
            case '\r':
                result += "\\r";
                break;
            case '\\':
                result += "\\\\";
                break;
            default:
                result += byte;
        }
    }
    return result;
}

struct TsvText {
    std::string operator()(const std::string& text) const { return escaped(text); }
    std::string operator()(std::int64_t number) const { return fmt::to_string(number); }
    std::string operator()(bool flag) const { return flag ? "true" : "false"; }
    std::string operator()(const std::vector<std::string>& texts) const {
        return escaped(fmt::format("{}", fmt::join(texts, "\n")));
    }
};

struct TomlInserter {
    toml::table& table;
    const std::string& name;

    void operator()(const std::string& text) const { table.insert(name, Text::displayable(text)); }
    void operator()(std::int64_t number) const { table.insert(name, number); }
    void operator()(bool flag) const { table.insert(name, flag); }
    void operator()(const std::vector<std::string>& texts) const {
        toml::array list;
        for (const auto& text : texts) list.push_back(Text::displayable(text));
        table.insert(name, std::move(list));
    }
};

/// The writer of the library sorts keys; a reader of the text should find them in the order of the record.
std::string tomlLines(const Record& record) {
    std::string lines;
    for (const auto& [name, value] : record) {
        toml::table one;
        std::visit(TomlInserter{one, name}, value);
        std::ostringstream text;
        // Line breaks are escaped: a key stays one line, whatever the names of files hold.
        text << toml::toml_formatter{one, toml::toml_formatter::default_flags &
                                              ~toml::format_flags::allow_multi_line_strings &
                                              ~toml::format_flags::allow_literal_strings};
        lines += text.str() + "\n";
    }
    return lines;
}

}  // namespace

std::vector<std::string> namesOf(const Record& record) {
    std::vector<std::string> names;
    for (const auto& [name, value] : record) names.push_back(name);
    return names;
}

std::string tsv(const std::vector<std::string>& names, const std::vector<Record>& records) {
    std::string text = fmt::format("{}\n", fmt::join(names, "\t"));
    for (const auto& record : records) {
        std::vector<std::string> cells;
        cells.reserve(record.size());
        for (const auto& [name, value] : record) cells.push_back(std::visit(TsvText{}, value));
        text += fmt::format("{}\n", fmt::join(cells, "\t"));
    }
    return text;
}

std::string tsv(const Record& record) {
    return tsv(namesOf(record), {record});
}

std::string toml(std::string_view name, const std::vector<Record>& records) {
    if (records.empty()) return fmt::format("{} = []\n", name);
    std::vector<std::string> tables;
    tables.reserve(records.size());
    for (const auto& record : records) tables.push_back(fmt::format("[[{}]]\n{}", name, tomlLines(record)));
    return fmt::format("{}", fmt::join(tables, "\n"));
}

std::string toml(const Record& record) {
    return tomlLines(record);
}

}  // namespace tarvik::CommandLine
