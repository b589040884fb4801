#pragma once

#include "CommandLine/Grammar/CommandDescription.h"
#include "CommandLine/Grammar/Format.h"
#include "CommandLine/Grammar/Verbs.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Basics/Path.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace tarvik::CommandLine {

/// What a command line asks for.
struct Options {
    using Verb = CommandLine::Verb;

    Verb verb = Verb::drives;
    /// The item of a move, or the source of an install, as it was written.
    fs::path path;
    /// The applications that are meant, the links of a restore, or an uninstall of the past, as they were written.
    /// `apps` and those that list take one at most; without it, all are meant.
    std::vector<std::string> names;
    /// The items of a backup, or the places of findings, as they were written.
    std::vector<fs::path> paths;
    /// A mount path or a volume's name, as it was written.
    std::string drive;
    /// The `id` of an option for installers, as it was written; empty when that was left open.
    std::string option;
    std::optional<fs::path> root;
    std::optional<fs::path> home;
    Format format = Format::human;
    /// Goes ahead without a question.
    bool yes = false;
    /// What an application keeps outside of its bundle moves with it.
    bool includesData = true;
    /// Running applications are quit before they move.
    bool quitsRunning = false;
    /// Only shows what would be done.
    bool isDryRun = false;
    /// Mends what is wrong instead of only telling it.
    bool repairs = false;
    /// Takes away what was found instead of only telling it.
    bool removes = false;
    /// How a finding shall be repaired, as it was written; empty when that was left open.
    std::string strategy;
    /// Of an application only the bundle goes.
    bool onlyApp = false;
    /// What goes besides: names of classes of things, or paths, as they were written.
    std::vector<std::string> with;

    bool operator==(const Options&) const = default;
};

/// A command line that cannot be understood. `description()` is one sentence.
class WrongUse : public Failure {
public:
    WrongUse(std::string description, std::string usage);
    /// How it would be right: the whole command, a line for each verb that can be meant.
    const std::string& usage() const noexcept { return m_usage; }

private:
    std::string m_usage;
};

/// Text to print instead of an act: what --help, --version and `completion` ask for, and --man, which no help shows:
/// the source of the manual page, for those who pack the command.
struct Information {
    std::string text;
};

/// Reads the arguments, the program's own name left out. @throws WrongUse
std::variant<Options, Information> parse(const std::vector<std::string>& arguments);

/// What `parse` understands.
CommandDescription describe();

}  // namespace tarvik::CommandLine
