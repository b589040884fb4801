#include "Installers/Planning/InstallerPlanner.h"

#include "Health/SpotlightHealthCheck.h"
#include "Installers/Inspection/InstallerInspector.h"
#include "Installers/Options/InstallerOptionPlaces.h"
#include "Platform/Files/LastComponent.h"

#include <fmt/format.h>

#include <iterator>
#include <utility>

namespace tarvik::InstallerPlanner {

namespace {

/// Of packages inside of an image or an archive nothing is known before the run.
std::vector<std::string> policyWarnings(const InstallerInspection& inspection, const InstallerOption& option) {
    const bool isPackage = inspection.kind == InstallerKind::pkg || inspection.kind == InstallerKind::mpkg;
    if (option.allowUntrustedPackages || !isPackage || inspection.trust.status == TrustSummary::trusted) return {};
    return {"Untrusted packages are blocked."};
}

std::vector<std::string> actionsFor(const Host& host, const InstallableItem& item, const InstallerOption& option,
                                    const fs::path& targetDrive) {
    const std::string path = item.path.native();
    switch (item.kind) {
        case InstallerKind::pkg:
        case InstallerKind::mpkg:
            return {"snapshot-before", fmt::format("install-pkg\t{}\t/", path), "snapshot-after", "receipt-diff",
                    "externalize-safe-new-apps"};
        case InstallerKind::app: {
            const std::string name = lastComponent(item.path);
            const fs::path destination = InstallerOptionPlaces::applicationsOn(targetDrive, option) / name;
            const fs::path launcher = InstallerOptionPlaces::launchers(host, option) / name;
            return {fmt::format("copy-app\t{}\t{}", path, destination.native()),
                    fmt::format("launcher-app\t{}\t{}", launcher.native(), destination.native())};
        }
        default:
            return {fmt::format("inspect-contained\t{}", path)};
    }
}

void append(std::vector<std::string>& texts, std::vector<std::string> more) {
    std::move(more.begin(), more.end(), std::back_inserter(texts));
}

}  // namespace

InstallerPlan plan(const Host& host, const fs::path& source, const InstallerOption& option,
                   const fs::path& targetDrive) {
    InstallerInspection inspection = InstallerInspector::inspect(host, source);
    InstallerPlan plan{.sourcePath = source, .optionID = option.id, .targetDrivePath = targetDrive};
    plan.warnings = std::move(inspection.warnings);
    append(plan.warnings, policyWarnings(inspection, option));
    append(plan.warnings, SpotlightHealthCheck::warnings(host));
    for (const InstallableItem& item : inspection.items) {
        append(plan.actions, actionsFor(host, item, option, targetDrive));
        plan.neededBytes += item.sizeBytes;
    }
    return plan;
}

}  // namespace tarvik::InstallerPlanner
