#pragma once

#include "Health/HealthIssue.h"

#include <array>
#include <optional>
#include <string_view>
#include <vector>

namespace tarvik {

/// What can be done about a finding.
enum class HealthRepairStrategy {
    removeDangling,
    removeEmpty,
    reclaimReverted,
    reSymlinkReverted,
    removeOrphan,
    forgetMissingTrackedFiles,
    repairSpotlightLaunchers,
    repairBrokenLauncher,
    restoreUnsafePrefs,
    restoreSandboxExternal,
    /// Lets a dangling link of data lead to the copy that was found for it.
    repointDangling,
};

/// Which repairs there are, and how they are called.
namespace HealthRepairStrategies {

struct Offer {
    /// What stands on the button.
    std::string_view label;
    HealthRepairStrategy strategy;
};

/// What the window offers for a finding, in the order of the buttons. Pure.
const std::vector<Offer>& offers(HealthIssue::Kind kind);
/// Whether it is a repair for findings of that kind. Pure.
bool isFor(HealthIssue::Kind kind, HealthRepairStrategy strategy);
/// The names by which strategies are asked for, in their order.
const std::array<std::string_view, 11>& names();
/// The name by which it is asked for, as "reclaimReverted". Pure.
std::string_view name(HealthRepairStrategy strategy);
/// The strategy of that name. Pure.
std::optional<HealthRepairStrategy> named(std::string_view name);

}  // namespace HealthRepairStrategies

}  // namespace tarvik
