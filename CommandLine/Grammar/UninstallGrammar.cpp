#include "CommandLine/Grammar/UninstallGrammar.h"

#include "CommandLine/Grammar/GrammarParts.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>

namespace tarvik::CommandLine {

using namespace GrammarParts;

UninstallGrammar::UninstallGrammar(CLI::App& command, Options& options)
    : m_options(options),
      m_uninstall(addVerb(command, "uninstall",
                          "Move an application and all that belongs to it to the Trash, or have it back")),
      m_apps(addVerb(*m_uninstall, "apps", "List what can be uninstalled, or tell all about one application")),
      m_list(addVerb(*m_uninstall, "list", "List the uninstalls of the past, or tell all about one")),
      m_undo(addVerb(*m_uninstall, "undo", "Put back what an uninstall has moved to the Trash")) {
    m_uninstall->require_subcommand(0, 1);
    addArgument(*m_uninstall, "NAME", m_application, "An application: its name, its bundle identifier or its path");
    addFlag(*m_uninstall, "--only-app", m_options.onlyApp, "Leave everything but the application itself");
    // One by one: the library would take a path in brackets for a list.
    m_uninstall
        ->add_option_function<std::string>(
            "--with", [this](const std::string& what) { m_options.with.push_back(what); },
            "What goes too: receipts, launch-daemons, external-target, or a path that the plan shows")
        ->type_name(valueOf("--with"))
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->trigger_on_parse();
    addFlag(*m_uninstall, "--quit-running", m_options.quitsRunning, "Quit what is running first");
    addFlag(*m_uninstall, "--dry-run", m_options.isDryRun, "Change nothing, only show what would be done");
    addArgument(*m_apps, "NAME", m_name, "An application: its name, its bundle identifier or its path");
    addArgument(*m_list, "ID", m_name, "An uninstall of the past");
    addArgument(*m_undo, "ID", m_name, "An uninstall of the past");
}

void UninstallGrammar::takeName() {
    if (m_apps->count("NAME") + m_list->count("ID") + m_undo->count("ID") > 0)
        m_options.names = {m_name};
    else if (m_uninstall->count("NAME") > 0 && m_uninstall->get_subcommands().empty())
        m_options.names = {m_application};
}

std::optional<std::string_view> UninstallGrammar::argument() const {
    if (!m_uninstall->parsed()) return std::nullopt;
    return m_list->parsed() || m_undo->parsed() ? "ID" : "NAME";
}

std::optional<std::string> UninstallGrammar::complaint() const {
    if (!m_uninstall->parsed()) return std::nullopt;
    const auto& names = m_options.names;
    if (!m_uninstall->get_subcommands().empty()) {
        const CLI::App& verb = *m_uninstall->get_subcommands().front();
        if (m_uninstall->count("NAME") > 0)
            return names.empty() ? fmt::format("\"{}\" stands before the verb {}.", m_application, wordsOf(verb))
                                 : surplusSentence(m_application, *argument());
        for (const char* const name : {"--only-app", "--with", "--quit-running", "--dry-run"})
            if (m_uninstall->count(name) > 0) return fmt::format("{} does not belong to {}.", name, wordsOf(verb));
    }
    if (m_options.verb == Verb::uninstall && names.empty())
        return "Name the application that shall go: a NAME is missing.";
    if (m_options.verb == Verb::uninstallUndo && names.empty())
        return "Name the uninstall that shall be taken back: an ID is missing.";
    if (std::find(m_options.with.begin(), m_options.with.end(), "") != m_options.with.end())
        return "--with needs a value: --with WHAT.";
    return std::nullopt;
}

}  // namespace tarvik::CommandLine
