#include "Installers/Install/ScriptSourceInstaller.h"

#include "Installers/Install/InstallCancellation.h"
#include "Installers/Install/InstallCommand.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Machine/KeptAwake.h"

#include <fmt/format.h>

#include <system_error>

namespace tarvik::ScriptSourceInstaller {

namespace {

constexpr const char* scriptInstall = "script-install";
constexpr int blockedScript = 20;

/// What cannot be made so may run all the same: the shell only reads it.
void ensureExecutable(const fs::path& script) {
    constexpr fs::perms execute = fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec;
    std::error_code error;
    const auto permissions = fs::status(script, error).permissions();
    if (error || (permissions & execute) != fs::perms::none) return;
    fs::permissions(script, execute, fs::perm_options::add, error);
}

}  // namespace

std::vector<std::string> install(const Host& host, const fs::path& source, const InstallTerms& terms) {
    terms.reporter.log(fmt::format("source\tscript\t{}", source.native()));
    if (!terms.option.allowUntrustedScripts)
        throw Failure(scriptInstall, blockedScript,
                      "Shell scripts are blocked by this install option. Use an option with allowUntrustedScripts = "
                      "true (e.g. tracked-script-external).");
    InstallCancellation::throwIfAsked(terms.cancellation);
    ensureExecutable(source);
    const KeptAwake awake(host, "A script is being run");
    const auto command = InstallCommand::of(host, terms.useRootferry, host.tools.bash, "bash", {source.native()});
    terms.reporter.log(fmt::format("run-script\t{}\t{}", command.tool.native(), source.native()));
    command.run(scriptInstall, terms.cancellation);
    std::string line = fmt::format("ran-script\t{}", source.native());
    terms.reporter.log(line);
    return {std::move(line)};
}

}  // namespace tarvik::ScriptSourceInstaller
