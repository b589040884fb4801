#include "CommandLine/Grammar/InstallGrammar.h"

#include "CommandLine/Grammar/GrammarParts.h"

#include <CLI/CLI.hpp>

namespace tarvik::CommandLine {

using namespace GrammarParts;

InstallGrammar::InstallGrammar(CLI::App& command, Options& options)
    : m_options(options),
      m_install(addVerb(command, "install", "Look at installers, and at what they would do")),
      m_inspect(
          addVerb(*m_install, "inspect", "Tell what an installer is, what it holds and how far it can be trusted")),
      m_plan(nullptr) {
    constexpr const char* source = "An application, a disk image, a zip archive, a package or a script";
    m_install->require_subcommand(0, 1);
    addArgument(*m_inspect, "SOURCE", m_source, source);
    addVerb(*m_install, "options", "List the options by which an installer can be run");
    m_plan = addVerb(*m_install, "plan", "Show what an install would do, and change nothing");
    addArgument(*m_plan, "SOURCE", m_source, source);
    addOption(*m_plan, "--drive", m_options.drive, "The drive: its mount path or its name");
    addOption(*m_plan, "--option", m_options.option, "An option of the list; without it, the first one");
}

void InstallGrammar::takeSource() {
    if (m_inspect->count("SOURCE") + m_plan->count("SOURCE") > 0) m_options.path = m_source;
}

bool InstallGrammar::takesWord(const std::string& word) {
    if (!wantsSource() || !m_options.path.empty()) return false;
    m_options.path = word;
    return true;
}

bool InstallGrammar::wantsSource() const {
    return m_inspect->parsed() || m_plan->parsed();
}

std::optional<std::string> InstallGrammar::complaint() const {
    if (wantsSource() && m_options.path.empty()) return "Name the installer: a SOURCE is missing.";
    if (m_plan->parsed() && m_options.drive.empty())
        return "Name the drive that applications shall go to, with --drive DRIVE.";
    if (m_plan->count("--option") > 0 && m_options.option.empty()) return "--option needs a value: --option ID.";
    return std::nullopt;
}

}  // namespace tarvik::CommandLine
