#include "CommandLine/Grammar/ManPage.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace tarvik::CommandLine::ManPage {

namespace {

/// Paragraphs of each section that help does not hold, as plain text.
constexpr std::string_view description =
    "Tarvik frees a small internal disk: it moves applications, their data and any folder to an external drive and "
    "leaves "
    "a symbolic link at the old place, so that everything keeps working from where it is expected. An original is "
    "removed "
    "only after a complete copy has been proved and flushed to the drive, and everything comes back when you ask.";

constexpr std::string_view questions =
    "Verbs that change something ask first, and refuse where there is nobody to ask, unless --yes is given. The others "
    "only look.";

/// What a reader wants to know of a verb beyond its help.
constexpr std::array<std::pair<std::string_view, std::string_view>, 16> remarks = {{
    {"apps", "Without a NAME, the list is sorted by size, the largest first."},
    {"launchers",
     "A launcher is a small application that bears the name and icon of one on the drive and opens it. One whose "
     "application is gone is only told of."},
    {"move app",
     "The data of an application moves as items of their own, each with a link. An item that fails stops no other one. "
     "With --dry-run the status is the one that the move would have."},
    {"move folder",
     "What could only do harm is refused: the home folder, folders of the system, a folder that holds the "
     "drive."},
    {"move restore",
     "A name with a slash, or at which something stands, is a path; every other one is that of an application, which "
     "comes back with the folder that was moved when it stands in one. Data of an application that was moved as items "
     "of their own is named by its paths."},
    {"backup create",
     "The copies stand in a folder with the date as its name; it is complete when backup.json stands in "
     "it."},
    {"health",
     "The status is 1 when something is wrong. A finding tells its place, what was found, and where it leads. Nothing "
     "is "
     "changed."},
    {"health repair",
     "Without a PATH and a strategy, only what can do no harm is done: launchers are made or led to another copy, "
     "links of data are led to the copy that was found, and tracked files that are missing are forgotten. Everything "
     "else is named by its PATH, and a finding with two repairs (reverted) needs --strategy too: reclaimReverted or "
     "reSymlinkReverted. With --yes and without its PATH, a link whose drive is only away is never removed. What has "
     "changed since the check is left alone."},
    {"uninstall",
     "What belongs to an application is told by its exact identifier, name or slug in the places where a Mac keeps "
     "such "
     "things, never by likeness. Everything goes to the Trash, or beside its place where the Trash refuses it. "
     "Receipts, what the system starts, and the copy on a drive of what a link stands for stay unless --with names "
     "them. An "
     "application that is called apps, list or undo is named behind two hyphens."},
    {"uninstall list", "With --format toml, the document of one uninstall needs its ID."},
    {"uninstall undo",
     "Nothing that stands at an old place is replaced: what cannot come back is told, with the reason, and stays where "
     "it is. Receipts do not come back."},
    {"install inspect",
     "An image is mounted for reading and an archive unpacked for the look, and both are cleared away again. The "
     "status "
     "is 0 whatever is found. All that the system says of a package's signature is shown; the forms for programs leave "
     "it out."},
    {"install options",
     "An option says which installers may run and where applications go. Those that came with the program can be "
     "replaced, as a whole, by files of your own with the same id."},
    {"install plan",
     "Without --option, the first of the list is taken. One that could write elsewhere than below the drive and in the "
     "folder for launchers is refused."},
    {"dedupe",
     "Applications are compared by their bundle identifiers, in /Applications and the user's own Applications folder. "
     "Only a launcher ever goes, and only when a real application on the internal disk stays; a launcher that opens "
     "another application stays too."},
    {"completion",
     "For bash, put eval \"$(tarvik completion bash)\" into ~/.bashrc. For zsh, save the script as _tarvik in a "
     "folder of "
     "fpath. For fish, save it as ~/.config/fish/completions/tarvik.fish. An installed package has done so already."},
}};

using Definitions = std::vector<std::pair<std::string_view, std::string_view>>;

const Definitions statuses = {
    {"0", "Done."},
    {"1", "The act failed, or something of it did. Why, stands on standard error."},
    {"2", "The command line was wrong, or named a drive, an application or a machine that is not there."}};

const Definitions variables = {
    {"HOME", "The home folder of the user who is meant, unless --home names another one."},
    {"TARVIK_LAUNCHER_BINARY", "The program that goes into launchers, instead of the one beside tarvik."}};

const Definitions files = {
    {"DRIVE/ExternalTarvik", "What has been moved to a drive, as ordinary items: Apps, Data and Folders."},
    {"DRIVE/TarvikBackups", "The backups on a drive, a folder for each."},
    {".TarvikTrash", "What was disposed of beside it, where there is no Trash."},
    {"~/Library/Application Support/Tarvik/health-manifest.json", "What was moved, and from where."},
    {"~/Library/Application Support/Tarvik/UninstallSessions", "What was uninstalled, a folder for each time."},
    {"~/Library/Application Support/Tarvik/InstallerOptions",
     "Options for installers of your own, a TOML file for each."}};

const Definitions examples = {
    {"tarvik apps", "Which applications are large?"},
    {"tarvik move app \"Logic Pro\" --drive \"Studio Drive\" --dry-run", "What would move, and does it fit?"},
    {"tarvik move app \"Logic Pro\" --drive \"Studio Drive\"", "Move it with its data."},
    {"tarvik move restore \"Logic Pro\" ~/Movies", "Bring an application and a folder back."},
    {"tarvik uninstall \"Logic Pro\" --dry-run", "What belongs to it, and what of it would go?"},
    {"tarvik install inspect ~/Downloads/Mixer.dmg", "What is in it, and can it be trusted?"},
    {"tarvik links --format tsv", "All links, for a script."}};

/// Text as the formatter shall show it, to the letter: a hyphen is one, and no line is taken for a request.
std::string escaped(std::string_view text) {
    std::string result;
    for (const char character : text) {
        if (character == '\\')
            result += "\\e";
        else if (character == '-')
            result += "\\-";
        else if (character == '~')
            result += "\\(ti";
        else if (character == '\'')
            result += "\\(aq";
        else if (character == '"')
            result += "\\(dq";
        else
            result += character;
    }
    return !text.empty() && text.front() == '.' ? "\\&" + result : result;
}

/// Lines as short as manual pages have them.
std::string wrapped(std::string_view sentence) {
    constexpr std::size_t longest = 78;
    std::string result;
    std::string line;
    while (!sentence.empty()) {
        const auto length = std::min(sentence.find(' '), sentence.size());
        const auto word = sentence.substr(0, length);
        sentence.remove_prefix(std::min(length + 1, sentence.size()));
        if (!line.empty() && line.size() + 1 + escaped(word).size() > longest) result += std::exchange(line, {}) + "\n";
        line += line.empty() ? escaped(word) : " " + escaped(word);
    }
    return result + line + "\n";
}

/// Each sentence begins a line: that is how a formatter knows it from an abbreviation.
std::string paragraph(std::string_view text) {
    std::string result;
    std::size_t begin = 0;
    for (std::size_t at = 0; at + 1 < text.size(); ++at) {
        const bool endsHere = (text[at] == '.' || text[at] == '?') && text[at + 1] == ' ';
        if (!endsHere) continue;
        result += wrapped(text.substr(begin, at + 1 - begin));
        begin = at + 2;
    }
    return result + wrapped(text.substr(begin));
}

std::string sentence(const std::string& text) {
    return paragraph(text.empty() || text.back() == '.' ? text : text + ".");
}

std::string bold(std::string_view text) {
    return fmt::format("\\fB{}\\fR", escaped(text));
}

std::string italic(std::string_view text) {
    return fmt::format("\\fI{}\\fR", escaped(text));
}

/// A usage line with what is typed to the letter in bold, and what stands for something else in italics.
std::string usage(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        std::size_t length = 0;
        const auto isPart = [&](char character) {
            return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '-';
        };
        while (length < text.size() && isPart(text[length])) ++length;
        const auto word = text.substr(0, length);
        if (!word.empty())
            result += std::isupper(static_cast<unsigned char>(word.front())) != 0 ? italic(word) : bold(word);
        else
            result += escaped(text.substr(0, length = 1));
        text.remove_prefix(length);
    }
    return result;
}

std::string definition(const std::string& term, const std::string& text) {
    return fmt::format(".TP\n{}\n{}", term, text);
}

std::string section(std::string_view title, const Definitions& definitions) {
    auto text = fmt::format(".SH {}\n", title);
    for (const auto& [term, meaning] : definitions) text += definition(bold(term), paragraph(meaning));
    return text;
}

std::string optionsOf(const CommandDescription& command) {
    std::string text;
    for (const auto& option : command.options) {
        std::vector<std::string> names;
        for (const auto& name : option.names) names.push_back(bold(name));
        const auto value = option.value.empty() ? std::string() : " " + italic(option.value);
        text += definition(fmt::format("{}{}", fmt::join(names, ", "), value), sentence(option.text));
    }
    return text;
}

std::string verbsOf(const CommandDescription& command) {
    std::string text;
    for (const auto& verb : command.verbs) {
        // One that takes nothing and whose first way to be written is another verb's is no act of its own.
        const bool isAct =
            verb.verbs.empty() || !verb.arguments.empty() || verb.usages.front() == "tarvik " + verb.words;
        if (!isAct) {
            text += verbsOf(verb);
            continue;
        }
        text += fmt::format(".SS {}\n{}.PP\n{}", verb.words, usage(verb.usages.front()) + "\n", sentence(verb.text));
        for (const auto& [words, remark] : remarks)
            if (words == verb.words) text += paragraph(remark);
        for (const auto& argument : verb.arguments) text += definition(usage(argument.name), sentence(argument.text));
        text += optionsOf(verb) + verbsOf(verb);
    }
    return text;
}

}  // namespace

std::string of(const CommandDescription& command) {
    std::string text = fmt::format(".TH TARVIK 1 {} \"tarvik {}\" \"User Commands\"\n", TARVIK_DATE, TARVIK_VERSION);
    text += fmt::format(".SH NAME\n{} \\- move what is large to an external drive and leave a link\n.SH SYNOPSIS\n",
                        command.name);
    std::vector<std::string> usages;
    for (const auto& line : command.usages) usages.push_back(usage(line));
    text += fmt::format("{}\n.SH DESCRIPTION\n{}.PP\n{}", fmt::join(usages, "\n.br\n"), paragraph(description),
                        paragraph(questions));
    text += fmt::format(".SH OPTIONS\nEvery verb takes these, before and behind it.\n{}", optionsOf(command));
    text += ".SH VERBS\n" + verbsOf(command);
    text += section("EXIT STATUS", statuses);
    text += section("ENVIRONMENT", variables);
    text += section("FILES", files);
    text += section("EXAMPLES", examples);
    return text + ".SH SEE ALSO\n.BR tarvik\\-window (1)\n";
}

}  // namespace tarvik::CommandLine::ManPage
