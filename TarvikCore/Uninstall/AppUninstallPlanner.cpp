#include "Uninstall/AppUninstallPlanner.h"

#include "Applications/ExternalTarget.h"
#include "Health/SpotlightHealthCheck.h"
#include "Platform/Basics/Parallel.h"
#include "Platform/Machine/SilentVolumes.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace tarvik::AppUninstallPlanner {

namespace {

std::vector<std::string> warningsOf(const AppRecord& app, const std::vector<UninstallCandidate>& candidates) {
    std::vector<std::string> warnings;
    if (app.kind == AppRecordKind::systemRisky)
        warnings.push_back("Refusing system app uninstall: " + app.bundlePath.native());
    if (app.hasSystemExtension) warnings.emplace_back("App declares a system extension; review carefully.");
    if (app.isMacAppStore) warnings.emplace_back("Mac App Store app; receipt may also need to be forgotten.");
    if (std::any_of(candidates.begin(), candidates.end(), [](const UninstallCandidate& candidate) {
            return candidate.category == UninstallCategory::launchDaemons;
        }))
        warnings.emplace_back("Launch daemons detected; requires admin authentication.");
    if (app.kind == AppRecordKind::tarvikLauncher && app.externalTargetPath)
        warnings.emplace_back("Tarvik launcher: external target will only be removed if explicitly included.");
    return warnings;
}

}  // namespace

AppUninstallPlan plan(const Host& machine, const AppRecord& app, const UninstallSelection& selection,
                      RelatedFileScanner::Sizes sizes, const Cancellation& cancellation) {
    const Host host = SilentVolumes::noted(machine);
    AppUninstallPlan plan{.app = app};
    std::vector<std::string> ofSearch;
    // Each of the two waits for a tool.
    inParallel(2, 2, [&](std::size_t index) {
        if (index == 0)
            plan.candidates = RelatedFileScanner::scan(host, app, sizes, cancellation);
        else if (!cancellation.isCancelled())
            ofSearch = SpotlightHealthCheck::warnings(host);
    });
    plan.warnings = warningsOf(app, plan.candidates);
    std::move(ofSearch.begin(), ofSearch.end(), std::back_inserter(plan.warnings));
    for (const UninstallCandidate& candidate : plan.candidates) {
        plan.totalBytes += candidate.sizeBytes;
        if (effectiveSelected(candidate, app, selection)) plan.selectedBytes += candidate.sizeBytes;
    }
    return plan;
}

bool effectiveSelected(const UninstallCandidate& candidate, const AppRecord& app, const UninstallSelection& selection) {
    if (candidate.category == UninstallCategory::executable) {
        if (candidate.path == app.bundlePath) return true;
        if (candidate.path == app.externalTargetPath || candidate.path == ExternalTarget::of(app))
            return selection.includeExternalTarget;
        return candidate.defaultSelected;
    }
    return selection.includes(candidate.category).value_or(true) && candidate.defaultSelected;
}

}  // namespace tarvik::AppUninstallPlanner
