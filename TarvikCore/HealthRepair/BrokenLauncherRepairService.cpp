#include "HealthRepair/BrokenLauncherRepairService.h"

#include "Applications/LauncherLayout.h"
#include "Discovery/AppBundleEnumerator.h"
#include "Launchers/LauncherSigning.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Bundles/BundleIdentifierReader.h"
#include "Platform/Bundles/BundleInfoPlistReader.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

namespace tarvik::BrokenLauncherRepairService {

namespace {

/// Whether the bundle is the application itself and no launcher for it.
bool isApplication(const Host& host, const fs::path& bundle, const std::string& identifier) {
    const auto info = BundleInfoPlistReader::read(host, bundle);
    if (!info || info->bundleIdentifier != identifier) return false;
    if (Files::itemExists(bundle / LauncherLayout::targetFile)) return false;
    const auto own = BundleIdentifierReader::read(host, bundle);
    return !own || !own->ends_with(LauncherLayout::identifierSuffix);
}

}  // namespace

std::string repair(const Host& host, const fs::path& launcher) {
    const std::string name = launcher.filename();
    const auto target = replacementTarget(host, launcher);
    if (!target) return fmt::format("Could not retarget {}. Reinstall the app or remove the broken launcher.", name);
    try {
        Files::writeDurably(launcher / LauncherLayout::targetFile, target->native());
    } catch (const Failure& failure) {
        return fmt::format("Could not retarget {}: {}", name, failure.description());
    }
    LauncherSigning::sign(host, launcher, InstallerRunReporter::silent);
    LauncherSigning::enter(host, launcher, InstallerRunReporter::silent);
    return fmt::format("Retargeted {} to {}.", name, target->native());
}

std::optional<fs::path> replacementTarget(const Host& host, const fs::path& launcher) {
    const auto own = BundleIdentifierReader::read(host, launcher);
    if (!own) return std::nullopt;
    const std::string identifier = Text::replacing(*own, LauncherLayout::identifierSuffix, "");
    const fs::path itself = Files::standardized(launcher);
    for (const fs::path& root : {SystemFolders::applications(host), host.home / "Applications"})
        for (const fs::path& bundle : AppBundleEnumerator::bundles(root))
            if (Files::standardized(bundle) != itself && isApplication(host, bundle, identifier)) return bundle;
    return std::nullopt;
}

}  // namespace tarvik::BrokenLauncherRepairService
