#include "CommandLine/Grammar/GrammarParts.h"

#include "CommandLine/Grammar/ValuedOptions.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace tarvik::CommandLine::GrammarParts {

std::string wordsOf(const CLI::App& app) {
    const auto* parent = app.get_parent();
    if (!parent) return {};
    const auto before = wordsOf(*parent);
    return before.empty() ? app.get_name() : before + " " + app.get_name();
}

CLI::App* addVerb(CLI::App& parent, std::string_view name, const char* description) {
    auto* verb = parent.add_subcommand(std::string(name), description)->group("Verbs");
    verb->footer("Every verb takes the options of \"tarvik --help\" too.");
    return verb;
}

void addOption(CLI::App& app, const char* name, std::string& value, const char* description) {
    app.add_option(name, value, description)->type_name(valueOf(name));
}

void addFlag(CLI::App& app, const char* name, bool& flag, const char* description) {
    app.add_flag(name, flag, description)->disable_flag_override();
}

void addArgument(CLI::App& app, const char* name, std::string& value, const char* description) {
    app.add_option(name, value, description)->type_name("");
}

std::string valueOf(std::string_view option) {
    for (const auto& [name, value] : valuedOptions)
        if (name == option) return std::string(value);
    return {};
}

std::string surplusSentence(std::string_view word, std::string_view argument) {
    return fmt::format("\"{}\" is one word too many: one {} at a time, and in quotes when it holds a space.", word,
                       argument);
}

}  // namespace tarvik::CommandLine::GrammarParts
