#pragma once

#include <string>
#include <vector>

namespace tarvik::CommandLine {

/// An option as help shows it.
struct OptionDescription {
    /// As they are typed: "-h", "--help".
    std::vector<std::string> names;
    /// What its value is called, "DRIVE"; empty for an option that takes none.
    std::string value;
    std::string text;

    bool operator==(const OptionDescription&) const = default;
};

/// An argument as help shows it.
struct ArgumentDescription {
    /// "NAME", or "NAME|PATH" for what may be either.
    std::string name;
    /// Several can be given.
    bool repeats = false;
    std::string text;

    bool operator==(const ArgumentDescription&) const = default;
};

/// The whole command, or one verb of it: what --help shows, for those who show it in another form.
struct CommandDescription {
    /// "app" of "move app", "tarvik" for the whole command.
    std::string name;
    /// "move app"; empty for the whole command.
    std::string words;
    /// One for each verb that begins with these words.
    std::vector<std::string> usages;
    std::string text;
    std::vector<ArgumentDescription> arguments;
    /// Its own. Those of the whole command go with every verb.
    std::vector<OptionDescription> options;
    std::vector<CommandDescription> verbs;

    bool operator==(const CommandDescription&) const = default;
};

}  // namespace tarvik::CommandLine
