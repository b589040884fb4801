#include "Installers/Install/PackageInstaller.h"

#include "Installers/Install/BlockingSymlinks.h"
#include "Installers/Install/InstallCancellation.h"
#include "Installers/Install/InstallCommand.h"
#include "Platform/Machine/KeptAwake.h"

#include <fmt/format.h>

namespace tarvik::PackageInstaller {

std::string install(const Host& host, const fs::path& package, bool useRootferry, const InstallerRunReporter& reporter,
                    const Cancellation& cancellation) {
    const KeptAwake awake(host, "A package is being installed");
    const bool hasRemoved = BlockingSymlinks::clear(host, package, useRootferry, reporter, cancellation);
    // Without the copies that have gone, the package alone brings the applications back.
    const Cancellation untilTheEnd = hasRemoved ? Cancellation() : cancellation;
    InstallCancellation::throwIfAsked(untilTheEnd);
    const auto command = InstallCommand::of(host, useRootferry, host.tools.installer, "installer",
                                            {"-pkg", package.native(), "-target", "/"});
    reporter.log(fmt::format("run-pkg\t{}\t{}", command.tool.native(), package.native()));
    command.run("pkg-install", untilTheEnd);
    std::string line = fmt::format("installed-pkg\t{}", package.native());
    reporter.log(line);
    return line;
}

}  // namespace tarvik::PackageInstaller
