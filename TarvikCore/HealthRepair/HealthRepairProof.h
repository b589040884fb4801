#pragma once

#include "Health/HealthIssue.h"
#include "HealthRepair/HealthRepairStrategy.h"
#include "Platform/Machine/Host.h"

/// Looks whether a repair has done what it should: some of them only tell, when they could not, and others leave what
/// they could not remove.
namespace tarvik::HealthRepairProof {

/// Whether what was found has gone since, in the way that the repair promises. A few status calls, for launchers and
/// tracked files a small search; blocks; any thread; never fails.
bool isMended(const Host& host, const HealthIssue& issue, HealthRepairStrategy strategy);

}  // namespace tarvik::HealthRepairProof
