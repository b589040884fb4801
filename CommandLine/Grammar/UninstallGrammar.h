#pragma once

#include "CommandLine/Grammar/Options.h"

#include <optional>
#include <string>
#include <string_view>

namespace CLI {
class App;
}

namespace tarvik::CommandLine {

/// What can be said with `uninstall` and the verbs below it.
class UninstallGrammar {
public:
    /// Both outlive it.
    UninstallGrammar(CLI::App& command, Options& options);

    /// Takes the argument that was read, if there was one.
    void takeName();
    /// What the verb that was read calls its argument; nothing when it is none of these.
    std::optional<std::string_view> argument() const;
    /// What is wrong with what was read, in a sentence; nothing when it can be done.
    std::optional<std::string> complaint() const;

private:
    Options& m_options;
    /// The argument of `uninstall` itself, and the one of a verb below it.
    std::string m_application, m_name;
    CLI::App* m_uninstall;
    CLI::App* m_apps;
    CLI::App* m_list;
    CLI::App* m_undo;
};

}  // namespace tarvik::CommandLine
