#pragma once

#include "Health/HealthIssue.h"
#include "HealthRepair/HealthRepairStrategy.h"
#include "Platform/Machine/Host.h"

/// Looks whether a finding still holds: a user may press a button an hour after the check, when an updater has put a
/// bundle in a link's place or another drive is mounted.
namespace tarvik::HealthRecheck {

/// A few status calls; blocks; any thread. @throws Failure with the sentence for the user when what the repair would
/// act on is not what was found, or stands on a drive that does not answer, or when the repair is none for such a
/// finding. Nothing has been touched then.
void require(const Host& host, const HealthIssue& issue, HealthRepairStrategy strategy);

}  // namespace tarvik::HealthRecheck
