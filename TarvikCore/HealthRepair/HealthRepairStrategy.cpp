#include "HealthRepair/HealthRepairStrategy.h"

#include <algorithm>
#include <cstddef>

namespace tarvik::HealthRepairStrategies {

namespace {

/// In the order of the strategies.
constexpr std::array<std::string_view, 11> allNames = {
    "removeDangling",           "removeEmpty",          "reclaimReverted",
    "reSymlinkReverted",        "removeOrphan",         "forgetMissingTrackedFiles",
    "repairSpotlightLaunchers", "repairBrokenLauncher", "restoreUnsafePrefs",
    "restoreSandboxExternal",   "repointDangling"};

}  // namespace

const std::vector<Offer>& offers(HealthIssue::Kind kind) {
    using enum HealthRepairStrategy;
    static const std::array<std::vector<Offer>, HealthIssue::kindCount> all = {{
        {},
        {{"Remove dead symlink", removeDangling}},
        {{"Clean up (must reinstall)", removeEmpty}},
        {{"Clean up (must reinstall)", removeEmpty}},
        {{"Reclaim SSD space", reclaimReverted}, {"Re-symlink to SSD", reSymlinkReverted}},
        {{"Delete from SSD", removeOrphan}},
        {{"Forget stale DB entries", forgetMissingTrackedFiles}},
        {{"Repair Spotlight launchers", repairSpotlightLaunchers}},
        {{"Retarget launcher", repairBrokenLauncher}},
        {},  // What broke a signature is not known, so nothing mends it.
        {{"Restore plist to internal", restoreUnsafePrefs}},
        {{"Restore to internal disk", restoreSandboxExternal}},
    }};
    return all[static_cast<std::size_t>(kind)];
}

bool isFor(HealthIssue::Kind kind, HealthRepairStrategy strategy) {
    // The window offers none of it: a user who sees the finding removes the link or looks where the copy went.
    if (strategy == HealthRepairStrategy::repointDangling) return kind == HealthIssue::Kind::dangling;
    const auto& some = offers(kind);
    return std::any_of(some.begin(), some.end(), [&](const Offer& offer) { return offer.strategy == strategy; });
}

const std::array<std::string_view, 11>& names() {
    return allNames;
}

std::string_view name(HealthRepairStrategy strategy) {
    return allNames[static_cast<std::size_t>(strategy)];
}

std::optional<HealthRepairStrategy> named(std::string_view name) {
    const auto* const found = std::find(allNames.begin(), allNames.end(), name);
    if (found == allNames.end()) return std::nullopt;
    return static_cast<HealthRepairStrategy>(found - allNames.begin());
}

}  // namespace tarvik::HealthRepairStrategies
