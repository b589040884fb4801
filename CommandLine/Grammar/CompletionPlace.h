#pragma once

#include "CommandLine/Grammar/CommandDescription.h"

#include <optional>
#include <string>
#include <vector>

/// What can stand where a command line ends that is still being typed. Pure; safe on every thread.
namespace tarvik::CommandLine {

/// A word that can stand there, and what it means.
struct Candidate {
    std::string word;
    std::string note;

    bool operator==(const Candidate&) const = default;
};

/// The place of the last word.
struct CompletionPlace {
    enum class Kind {
        words,              ///< only the candidates
        drive,              ///< a drive: its name or its mount path
        application,        ///< an application: its name, its identifier or its path
        applicationOrPath,  ///< the same, or the path of anything
        uninstall,          ///< the id of an uninstall of the past
        installerOption,    ///< the id of an option for installers
        path,
        folder,
    };

    Kind kind = Kind::words;
    /// Verbs, options, or the values of an option; verbs also where an application can be named instead of one.
    std::vector<Candidate> candidates;
    /// What the word begins with and no candidate says: "--drive=" of "--drive=Stu".
    std::string prefix;
    /// The words of the verb, "move app", as far as they have been typed.
    std::string verb;
    /// The arguments that stand there already.
    std::vector<std::string> arguments;
    /// The values of --root and --home, as they were written.
    std::optional<std::string> root, home;

    bool operator==(const CompletionPlace&) const = default;
};

/// `words` are those behind the command's name, without quotes; the last one is being typed, and may be empty.
CompletionPlace placeIn(const CommandDescription& command, const std::vector<std::string>& words);

}  // namespace tarvik::CommandLine
