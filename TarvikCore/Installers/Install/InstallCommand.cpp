#include "Installers/Install/InstallCommand.h"

#include "Installers/Install/InstallCancellation.h"
#include "Installers/Install/Rootferry.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Processes/CommandRunner.h"

#include <utility>

namespace tarvik {

InstallCommand InstallCommand::of(const Host& host, bool useRootferry, const fs::path& path, const std::string& name,
                                  std::vector<std::string> arguments) {
    if (!useRootferry) return {path, std::move(arguments)};
    arguments.insert(arguments.begin(), name);
    return {Rootferry::path(host), std::move(arguments)};
}

void InstallCommand::run(const std::string& domain, const Cancellation& cancellation) const {
    const auto result = CommandRunner::runUntil(tool, arguments, cancellation);
    if (result.succeeded()) return;
    InstallCancellation::throwIfAsked(cancellation);
    throw Failure(domain, result.status, result.stderr + result.stdout);
}

}  // namespace tarvik
