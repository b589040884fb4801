#pragma once

#include "CommandLine/Grammar/Options.h"

#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace tarvik::CommandLine {

/// What can be said with the verbs below `install`.
class InstallGrammar {
public:
    /// Both outlive it.
    InstallGrammar(CLI::App& command, Options& options);

    /// The verb above them all.
    const CLI::App& whole() const { return *m_install; }
    /// Takes the source that was read, if there was one.
    void takeSource();
    /// Takes a word that was left over, where the verb that was read still lacks it.
    bool takesWord(const std::string& word);
    /// Whether the verb that was read works on a source.
    bool wantsSource() const;
    /// What is wrong with what was read, in a sentence; nothing when it can be done.
    std::optional<std::string> complaint() const;

private:
    Options& m_options;
    std::string m_source;
    CLI::App* m_install;
    CLI::App* m_inspect;
    CLI::App* m_plan;
};

}  // namespace tarvik::CommandLine
