#include "CommandLine/Grammar/Options.h"

#include "CommandLine/Grammar/CompletionScripts.h"
#include "CommandLine/Grammar/GrammarParts.h"
#include "CommandLine/Grammar/InstallGrammar.h"
#include "CommandLine/Grammar/ManPage.h"
#include "CommandLine/Grammar/UninstallGrammar.h"
#include "CommandLine/Grammar/ValuedOptions.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <memory>
#include <utility>

namespace tarvik::CommandLine {

namespace {

using Arguments = std::vector<std::string>;
using Verb = Options::Verb;
using namespace GrammarParts;

/// The options that only some verbs take, and which these are.
constexpr std::array<std::pair<std::string_view, std::string_view>, 10> owned = {
    {{"--drive", "move app, move folder, backup and install plan"},
     {"--dry-run", "move app and uninstall"},
     {"--no-data", "move app alone"},
     {"--only-app", "uninstall alone"},
     {"--option", "install plan alone"},
     {"--quit-running", "move app and uninstall"},
     {"--remove", "dedupe alone"},
     {"--repair", "launchers alone"},
     {"--strategy", "health repair alone"},
     {"--with", "uninstall alone"}}};

std::string usageOf(const CLI::App& app) {
    std::vector<std::string_view> usages;
    for (const auto& entry : Verbs::beginningWith(wordsOf(app))) usages.push_back(entry.usage);
    return fmt::format("{}", fmt::join(usages, "\n       "));
}

OptionDescription descriptionOf(const CLI::Option& option) {
    OptionDescription described{.value = option.get_type_name(), .text = option.get_description()};
    for (const auto& letter : option.get_snames()) described.names.push_back("-" + letter);
    for (const auto& name : option.get_lnames()) described.names.push_back("--" + name);
    return described;
}

CommandDescription descriptionOf(const CLI::App& app) {
    CommandDescription described{.name = app.get_name(), .words = wordsOf(app), .text = app.get_description()};
    for (const auto& entry : Verbs::beginningWith(described.words)) described.usages.emplace_back(entry.usage);
    const bool isWhole = app.get_parent() == nullptr;
    for (const auto* option : app.get_options()) {
        if (option->get_positional())
            described.arguments.push_back(
                {option->get_name(), option->get_type_name() == several, option->get_description()});
        else if (isWhole || option != app.get_help_ptr())
            described.options.push_back(descriptionOf(*option));
    }
    for (const auto* verb : app.get_subcommands({})) described.verbs.push_back(descriptionOf(*verb));
    return described;
}

/// The library's help with usage lines that show the whole command.
class HelpWithUsage : public CLI::Formatter {
public:
    std::string make_usage(const CLI::App* app, std::string /*name*/) const override {
        return fmt::format("\nUsage: {}\n", usageOf(*app));
    }
};

/// The command line as the library understands it.
class Grammar {
public:
    Grammar() {
        const auto help = std::make_shared<HelpWithUsage>();
        help->label("Positionals", "Arguments");
        m_app.formatter(help);
        // Global options may stand before or after the verb.
        m_app.fallthrough();
        // What is left over is judged here, in words of our own.
        m_app.allow_extras();
        // With a verb chosen, a path may bear the name of one.
        m_app.require_subcommand(0, 1);
        m_app.set_help_flag("-h,--help", "Print this help and end");
        m_app.set_version_flag("--version", "tarvik " TARVIK_VERSION, "Print the version and end");
        addOption(m_app, "--root", m_root, "Work on the machine in this folder instead of this machine");
        addOption(m_app, "--home", m_home, "The home folder of the user who is meant");
        addOption(m_app, "--format", m_format, "How results are written: human, tsv or toml");
        addFlag(m_app, "--yes", m_options.yes, "Go ahead without asking");
        m_app.footer(
            "Exit status: 0 done, 1 the act failed, 2 the command line was wrong.\n"
            "Results go to standard output, everything else to standard error.");

        addVerb(m_app, "drives", "List the drives");
        m_apps = addVerb(m_app, "apps", "List the applications, or tell all about one");
        addArgument(*m_apps, "NAME", m_name, "An application: its name, its bundle identifier or its path");
        addVerb(m_app, "links", "List the links that stand where things are moved from");
        addFlag(
            *addVerb(m_app, "launchers", "List the launchers of applications on drives, and what is wrong with them"),
            "--repair", m_options.repairs, "Make the ones that are missing, and mend what can be mended");
        m_move = addVerb(m_app, "move", "Move something to a drive, or back");
        m_move->require_subcommand(0, 1);
        m_moveApp =
            addVerb(*m_move, "app", "Move applications and their data to a drive, and link their old paths to it");
        // One name only: the library would take a name in brackets for a list. The others are left over.
        m_moveApp->add_option("NAME", m_name, "An application: its name, its bundle identifier or its path")
            ->type_name(several);
        addOption(*m_moveApp, "--drive", m_options.drive, "The drive: its mount path or its name");
        addFlag(*m_moveApp, "--dry-run", m_options.isDryRun, "Change nothing, only show what would be done");
        addFlag(*m_moveApp, "--no-data", m_leavesData, "Leave the data where it is, move only the applications");
        addFlag(*m_moveApp, "--quit-running", m_options.quitsRunning, "Quit applications that are running first");
        auto* folder = addVerb(*m_move, "folder", "Move a folder to a drive and link its old path to it");
        addArgument(*folder, "PATH", m_path, "The folder");
        addOption(*folder, "--drive", m_options.drive, "The drive: its mount path or its name");
        m_restore = addVerb(*m_move, "restore", "Bring back what links and launchers lead to");
        m_restore->add_option("NAME|PATH", m_name, "An application, or the path of a link")->type_name(several);
        m_backup = addVerb(m_app, "backup", "Copy things to a drive, or list the copies");
        m_backup->require_subcommand(0, 1);
        m_backupCreate = addVerb(*m_backup, "create", "Make a dated copy of files, folders or applications on a drive");
        m_backupCreate->add_option("PATH", m_path, "A file, a folder or an application")->type_name(several);
        addOption(*m_backupCreate, "--drive", m_options.drive, "The drive: its mount path or its name");
        auto* list = addVerb(*m_backup, "list", "List the backups on a drive");
        addOption(*list, "--drive", m_options.drive, "The drive: its mount path or its name");
        m_health =
            addVerb(m_app, "health", "Check everything that was moved, and the links and launchers that stand for it");
        m_health->require_subcommand(0, 1);
        m_healthRepair =
            addVerb(*m_health, "repair",
                    "Repair what the check finds: what is named, all that a strategy fits, or all that can do no harm");
        m_healthRepair->add_option("PATH", m_path, "The place of a finding")->type_name(several);
        addOption(*m_healthRepair, "--strategy", m_options.strategy,
                  "How, where there are several ways: the name of a repair");
        m_uninstall.emplace(m_app, m_options);
        m_install.emplace(m_app, m_options);
        addFlag(*addVerb(m_app, "dedupe", "Find launchers that stand beside the real application that they open"),
                "--remove", m_options.removes, "Move them to the Trash");
        m_completion = addVerb(m_app, Verbs::completion, "Print a script that completes the command in a shell");
        m_completion
            ->add_option("SHELL", m_shell, fmt::format("One of: {}", fmt::join(CompletionScripts::shells, ", ")))
            ->type_name("");
    }

    CommandDescription description() const { return descriptionOf(m_app); }

    std::variant<Options, Information> parse(const Arguments& arguments) {
        // The library forgets the mark that ends the options where a verb has all it needs: it never sees it.
        const auto mark = std::find(arguments.begin(), arguments.end(), "--");
        Arguments marked(mark == arguments.end() ? mark : mark + 1, arguments.end());
        try {
            // The parser takes its arguments from the end of the list.
            m_app.parse(Arguments(std::make_reverse_iterator(mark), arguments.rend()));
        } catch (const CLI::CallForHelp&) {
            return Information{m_app.help()};
        } catch (const CLI::CallForVersion& version) {
            return Information{std::string(version.what()) + "\n"};
        } catch (const CLI::ParseError&) {
            refuseMisusedOption(arguments);
        }
        refuseMissingValue("--with", arguments);
        refuseUnclearWords(takeWords(std::move(marked)));
        takeGlobalOptions();
        if (m_completion->parsed()) return Information{std::string(CompletionScripts::scriptFor(knownShell()))};
        takeVerb();
        return m_options;
    }

private:
    WrongUse wrong(std::string sentence) const { return {std::move(sentence), usageOf(meant())}; }

    /// The innermost verb that was named, or the command itself.
    const CLI::App& meant() const {
        const auto* app = &m_app;
        while (!app->get_subcommands().empty()) app = app->get_subcommands().front();
        return *app;
    }

    void takeVerb() {
        for (const auto& entry : Verbs::beginningWith(wordsOf(meant())))
            if (entry.verb && entry.words == wordsOf(meant())) m_options.verb = *entry.verb;
        if (!m_path.empty() && m_options.paths.empty()) m_options.path = m_path;
        m_options.includesData = !m_leavesData;
        requireArguments();
    }

    void requireArguments() const {
        const auto verb = m_options.verb;
        const auto& names = m_options.names;
        const bool isPast = verb == Verb::uninstallList || verb == Verb::uninstallUndo;
        if (std::find(names.begin(), names.end(), "") != names.end())
            throw wrong(isPast ? "An ID is empty." : "A NAME is empty.");
        if (verb == Verb::moveApp && names.empty())
            throw wrong("Name the applications that shall move: a NAME is missing.");
        const auto& paths = m_options.paths;
        if (std::find(paths.begin(), paths.end(), "") != paths.end()) throw wrong("A PATH is empty.");
        if (verb == Verb::backupCreate && paths.empty())
            throw wrong("Name what shall be backed up: a PATH is missing.");
        if (verb == Verb::backupCreate && m_options.drive.empty())
            throw wrong("Name the drive that the backup shall go to, with --drive DRIVE.");
        if (verb == Verb::backupList && m_options.drive.empty())
            throw wrong("Name the drive whose backups shall be listed, with --drive DRIVE.");
        if (verb == Verb::moveFolder && m_path.empty())
            throw wrong("Name the folder that shall move: a PATH is missing.");
        if (verb == Verb::moveRestore && names.empty())
            throw wrong("Name the links or the applications that shall come back: a NAME or a PATH is missing.");
        if (verb == Verb::moveFolder && m_options.drive.empty())
            throw wrong("Name the drive that the folder shall move to, with --drive DRIVE.");
        if (auto complaint = m_uninstall->complaint()) throw wrong(*std::move(complaint));
        if (auto complaint = m_install->complaint()) throw wrong(*std::move(complaint));
        if (verb == Verb::moveApp && m_options.drive.empty())
            throw wrong("Name the drive that the applications shall move to, with --drive DRIVE.");
    }

    /// Where the next option, or nothing at all, stands in the place of a value.
    void refuseMissingValue(std::string_view option, const Arguments& arguments) const {
        const auto end = std::find(arguments.begin(), arguments.end(), "--");
        for (auto at = std::find(arguments.begin(), end, option); at != end; at = std::find(at + 1, end, option))
            if (at + 1 == end || (at + 1)->starts_with("--"))
                throw wrong(fmt::format("{} needs a value: {} {}.", option, option, valueOf(option)));
    }

    /// The library has refused an option. Why, is seen in the arguments.
    [[noreturn]] void refuseMisusedOption(const Arguments& arguments) const {
        const auto end = std::find(arguments.begin(), arguments.end(), "--");
        for (const auto& [name, value] : valuedOptions) {
            if (name == "--with") continue;
            const auto isIt = [option = std::string(name)](const std::string& word) {
                return word == option || word.starts_with(option + "=");
            };
            if (std::count_if(arguments.begin(), end, isIt) > 1)
                throw wrong(fmt::format("{} can be given only once.", name));
            if (std::find(arguments.begin(), end, std::string(name) + "=") != end)
                throw wrong(fmt::format("{} needs a value: {} {}.", name, name, value));
        }
        for (const auto& [name, value] : valuedOptions) refuseMissingValue(name, arguments);
        for (auto word = arguments.begin(); word != end; ++word)
            for (const std::string flag : {"--yes", "--help", "--version", "--dry-run", "--no-data", "--only-app",
                                           "--quit-running", "--remove", "--repair"})
                if (word->starts_with(flag + "=")) throw wrong(fmt::format("{} takes no value.", flag));
        throw wrong("These options do not go together.");
    }

    /// Takes the words that the library has left over, and those behind the mark, for what the verb still lacks.
    /// @returns the rest.
    Arguments takeWords(Arguments marked) {
        if (m_apps->count("NAME") + m_moveApp->count("NAME") + m_restore->count("NAME|PATH") > 0)
            m_options.names = {m_name};
        m_uninstall->takeName();
        m_install->takeSource();
        if (m_backupCreate->count("PATH") + m_healthRepair->count("PATH") > 0) m_options.paths = {m_path};
        const auto isOption = [](const std::string& word) { return word.size() > 1 && word.front() == '-'; };
        Arguments rest;
        for (auto& word : m_app.remaining(true))
            if (isOption(word) || !takesWord(word)) rest.push_back(std::move(word));
        for (auto& word : marked) {
            if (takesWord(word)) continue;
            if (isOption(word))
                throw wrong(fmt::format("\"{}\" is one word too many: behind \"--\" nothing is an option.", word));
            rest.push_back(std::move(word));
        }
        return rest;
    }

    bool takesWord(const std::string& word) {
        if (m_install->takesWord(word)) return true;
        const auto words = wordsOf(meant());
        const bool takesSeveral = words == "move app" || words == "move restore";
        const bool takesOne = words == "apps" || words.starts_with("uninstall");
        if (takesSeveral || (takesOne && m_options.names.empty())) {
            m_options.names.push_back(word);
            return true;
        }
        if (words == "backup create" || words == "health repair") {
            m_options.paths.emplace_back(word);
            return true;
        }
        auto& only = words == Verbs::completion ? m_shell : m_path;
        if ((words != Verbs::completion && words != "move folder") || !only.empty()) return false;
        only = word;
        return true;
    }

    void refuseUnclearWords(const Arguments& words) const {
        requireVerb(m_app, words);
        if (m_move->parsed()) requireVerb(*m_move, words);
        if (m_backup->parsed()) requireVerb(*m_backup, words);
        if (m_install->whole().parsed()) requireVerb(m_install->whole(), words);
        if (words.empty()) return;
        const auto& word = words.front();
        for (const auto& [name, owners] : owned)
            if (word == name || word.starts_with(std::string(name) + "="))
                throw wrong(fmt::format("{} belongs to {}.", name, owners));
        if (m_health->parsed() && word.front() != '-') requireVerb(*m_health, words);
        if (word.size() > 1 && word.front() == '-') throw wrong(fmt::format("There is no option \"{}\".", word));
        refuseSurplus(word);
    }

    [[noreturn]] void refuseSurplus(const std::string& word) const {
        const auto argument = m_install->wantsSource() ? "SOURCE" : m_apps->parsed() ? "NAME" : "PATH";
        const bool hasArgument = !m_path.empty() || !m_options.path.empty() || !m_options.names.empty();
        throw wrong(hasArgument ? surplusSentence(word, m_uninstall->argument().value_or(argument))
                                : fmt::format("\"{}\" is one word too many.", word));
    }

    void requireVerb(const CLI::App& app, const Arguments& words) const {
        if (!app.get_subcommands().empty()) return;
        std::vector<std::string_view> choices;
        for (const auto& entry : Verbs::beginningWith(wordsOf(app))) choices.push_back(entry.words);
        const auto isOption = [](const std::string& word) { return word.size() > 1 && word.front() == '-'; };
        const auto word = std::find_if_not(words.begin(), words.end(), isOption);
        if (word == words.end() && !words.empty())
            throw wrong(fmt::format("There is no option \"{}\".", words.front()));
        if (words.empty()) throw wrong(fmt::format("What shall be done? Name one of: {}.", fmt::join(choices, ", ")));
        const auto prefix = app.get_parent() ? app.get_name() + " " : std::string();
        throw wrong(fmt::format("There is no \"{}{}\". There is: {}.", prefix, *word, fmt::join(choices, ", ")));
    }

    void takeGlobalOptions() {
        const auto known = installOutputFormatOf(m_format);
        if (!known) throw wrong(fmt::format("\"{}\" is no format. There is: human, tsv, toml.", m_format));
        m_options.format = *known;
        m_options.root = pathOption("--root", m_root);
        m_options.home = pathOption("--home", m_home);
    }

    const std::string& knownShell() const {
        const auto& shells = CompletionScripts::shells;
        const auto choices = fmt::format("{}", fmt::join(shells, ", "));
        if (m_shell.empty()) throw wrong(fmt::format("Name the shell, one of: {}.", choices));
        if (std::find(shells.begin(), shells.end(), m_shell) == shells.end())
            throw wrong(fmt::format("\"{}\" is no shell that can be completed in. There is: {}.", m_shell, choices));
        return m_shell;
    }

    /// An empty path would be taken for the working directory: nobody means that.
    std::optional<fs::path> pathOption(const std::string& name, const std::string& text) const {
        if (m_app.get_option(name)->empty()) return std::nullopt;
        if (text.empty()) throw wrong(fmt::format("{} needs a path that is not empty.", name));
        return fs::path(text);
    }

    Options m_options;
    std::string m_root, m_home, m_path, m_name, m_shell, m_format = "human";
    bool m_leavesData = false;
    CLI::App m_app{"Moves what is large to an external drive and leaves a link, so that everything keeps working.",
                   "tarvik"};
    CLI::App* m_apps = nullptr;
    CLI::App* m_move = nullptr;
    CLI::App* m_moveApp = nullptr;
    CLI::App* m_restore = nullptr;
    CLI::App* m_backup = nullptr;
    CLI::App* m_backupCreate = nullptr;
    CLI::App* m_health = nullptr;
    CLI::App* m_healthRepair = nullptr;
    CLI::App* m_completion = nullptr;
    // Made after all of the above, to which they hold.
    std::optional<UninstallGrammar> m_uninstall;
    std::optional<InstallGrammar> m_install;
};

}  // namespace

WrongUse::WrongUse(std::string description, std::string usage)
    : Failure("CommandLine", 2, std::move(description)), m_usage(std::move(usage)) {}

std::variant<Options, Information> parse(const Arguments& arguments) {
    if (arguments == Arguments{"--man"}) return Information{ManPage::of(describe())};
    return Grammar().parse(arguments);
}

CommandDescription describe() {
    return Grammar().description();
}

}  // namespace tarvik::CommandLine
