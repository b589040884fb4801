#pragma once

#include "Health/HealthIssue.h"
#include "HealthRepair/HealthRepairStrategy.h"
#include "Platform/Machine/Host.h"
#include "Platform/Storage/DriveGuard.h"

#include <optional>

/// Looks whether a finding still holds: a user may press a button an hour after the check, when an updater has put a
/// bundle in a link's place or another drive is mounted.
namespace tarvik::HealthRecheck {

/// A few status calls; blocks; any thread. @returns the drive that the repair acts on, to be held until it ends: the
/// one that the check has seen. Nothing where it acts on none. @throws Failure with the sentence for the user when what
/// the repair would act on is not what was found, or stands on another drive or one that does not answer, or when the
/// repair is none for such a finding. Nothing has been touched then.
std::optional<DriveGuard> require(const Host& host, const HealthIssue& issue, HealthRepairStrategy strategy);

}  // namespace tarvik::HealthRecheck
