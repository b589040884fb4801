#include "CommandLine/Options.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <map>

namespace tarvik::CommandLine {

namespace {

const std::map<std::string, Format> formats = {{"human", Format::human}, {"tsv", Format::tsv}, {"toml", Format::toml}};

/// An empty path would be taken for the working directory: nobody means that.
std::optional<fs::path> pathOption(const CLI::Option& option, const std::string& text) {
    if (option.empty()) return std::nullopt;
    if (text.empty()) throw WrongUse(fmt::format("{} needs a path that is not empty.", option.get_name()));
    return fs::path(text);
}

std::string sentenceOf(const CLI::ParseError& error) {
    std::string text = error.what();
    if (!text.empty() && text.back() != '.') text += '.';
    return text;
}

/// Words that no verb took. The mark that ends the options is reported among them, and means nothing.
std::vector<std::string> leftOver(const CLI::App& app) {
    auto words = app.remaining(true);
    std::erase(words, "--");
    return words;
}

void requireVerb(const CLI::App& command, const std::vector<std::string>& words, std::string_view verbs) {
    if (!command.get_subcommands().empty()) return;
    const auto prefix = command.get_parent() ? command.get_name() + " " : std::string();
    throw WrongUse(words.empty() ? fmt::format("What shall be done? Name one of: {}.", verbs)
                                 : fmt::format("There is no \"{}{}\". There is: {}.", prefix, words.front(), verbs));
}

}  // namespace

WrongUse::WrongUse(std::string description) : Failure("CommandLine", 2, std::move(description)) {}

std::variant<Options, Information> parse(const std::vector<std::string>& arguments) {
    Options options;
    std::string root, home, path, format = "human";

    CLI::App app("Moves what is large to an external drive and leaves a link, so that everything keeps working.",
                 "tarvik");
    // Global options may stand before or after the verb.
    app.fallthrough();
    // What is left over is judged here, in words of our own.
    app.allow_extras();
    // With a verb chosen, a path may bear the name of one.
    app.require_subcommand(0, 1);
    app.set_version_flag("--version", "tarvik " TARVIK_VERSION, "Print the version and end");
    const auto* rootOption =
        app.add_option("--root", root, "Work on the machine in this folder instead of this machine")->type_name("DIR");
    const auto* homeOption =
        app.add_option("--home", home, "The home folder of the user who is meant")->type_name("DIR");
    app.add_option("--format", format, "How results are written: human, tsv or toml")->type_name("FORMAT");
    app.add_flag("--yes", options.yes, "Go ahead without asking");
    app.footer(
        "Exit status: 0 done, 1 the act failed, 2 the command line was wrong.\n"
        "Results go to standard output, everything else to standard error.");

    const auto* drives = app.add_subcommand("drives", "List the drives");
    auto* move = app.add_subcommand("move", "Move something to a drive, or back");
    move->require_subcommand(0, 1);
    const auto addMove = [&](const char* name, const char* description, const char* pathDescription) {
        auto* command = move->add_subcommand(name, description);
        command->add_option("PATH", path, pathDescription)->type_name("");
        return command;
    };
    auto* folder = addMove("folder", "Move a folder to a drive and link its old path to it", "The folder");
    auto* driveOption = folder->add_option("--drive", options.drive, "The drive: its mount path or its name");
    driveOption->type_name("DRIVE");
    auto* restore = addMove("restore", "Bring back what a link leads to", "The link");

    try {
        // The parser takes its arguments from the end of the list.
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::CallForHelp&) {
        return Information{app.help()};
    } catch (const CLI::CallForVersion& version) {
        return Information{std::string(version.what()) + "\n"};
    } catch (const CLI::ParseError& error) {
        throw WrongUse(sentenceOf(error));
    }

    const auto words = leftOver(app);
    requireVerb(app, words, "drives, move folder, move restore");
    if (move->parsed()) requireVerb(*move, words, "move folder, move restore");
    if (!words.empty()) throw WrongUse(fmt::format("What \"{}\" means is not clear.", words.front()));

    const auto known = formats.find(format);
    if (known == formats.end()) throw WrongUse(fmt::format("\"{}\" is no format. There is: human, tsv, toml.", format));
    options.format = known->second;
    options.root = pathOption(*rootOption, root);
    options.home = pathOption(*homeOption, home);
    if (drives->parsed()) return options;

    const auto* command = folder->parsed() ? folder : restore;
    options.verb = folder->parsed() ? Options::Verb::moveFolder : Options::Verb::moveRestore;
    if (path.empty()) throw WrongUse(fmt::format("move {} needs a PATH.", command->get_name()));
    options.path = path;
    if (folder->parsed() && options.drive.empty()) throw WrongUse("move folder needs --drive DRIVE.");
    return options;
}

}  // namespace tarvik::CommandLine
