#include "Launchers/LauncherSigning.h"

#include "Platform/Files/Files.h"
#include "Platform/Processes/CommandRunner.h"

#include <fmt/format.h>

namespace tarvik::LauncherSigning {

void sign(const Host& host, const fs::path& launcher, const InstallerRunReporter& reporter) {
    const auto result = CommandRunner::run(
        host.tools.codesign, {"--force", "--sign", "-", "--timestamp=none", launcher.native()}, toolTimeout);
    reporter.log(result.succeeded() ? fmt::format("signed-launcher\t{}", launcher.native())
                                    : fmt::format("sign-launcher-warning\t{}", result.stderr));
}

void enter(const Host& host, const fs::path& launcher, const InstallerRunReporter& reporter) {
    if (!Files::exists(host.tools.lsregister)) return;
    CommandRunner::run(host.tools.lsregister, {"-f", launcher.native()}, toolTimeout);
    reporter.log(fmt::format("registered-launcher\t{}", launcher.native()));
}

}  // namespace tarvik::LauncherSigning
