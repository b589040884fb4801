#include "HealthRepair/HealthRepairStrategy.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tarvik::HealthRepairStrategies {

namespace {

/// In the order of the strategies.
constexpr std::array<std::string_view, 11> names = {
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

std::string_view name(HealthRepairStrategy strategy) {
    return names[static_cast<std::size_t>(strategy)];
}

std::optional<HealthRepairStrategy> named(std::string_view name) {
    const auto* const found = std::find(names.begin(), names.end(), name);
    if (found == names.end()) return std::nullopt;
    return static_cast<HealthRepairStrategy>(found - names.begin());
}

}  // namespace tarvik::HealthRepairStrategies
