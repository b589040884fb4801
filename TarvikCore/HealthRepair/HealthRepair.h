#pragma once

#include "Health/HealthIssue.h"
#include "HealthRepair/HealthRepairStrategy.h"
#include "Platform/Machine/Host.h"

#include <optional>
#include <string>

/// Mends what the health check has found, one finding at a time and only on a user's word.
namespace tarvik::HealthRepair {

/// Carries a repair out. Blocks, for a copy of the data where that moves; any thread but the window's. @returns what
/// the user reads, which tells too when nothing could be done. @throws Failure with the sentence for the user: also
/// when the finding does not hold any more, and then nothing has been touched.
std::string perform(const Host& host, const HealthIssue& issue, HealthRepairStrategy strategy);

/// The one repair of a finding that can do no harm, for many findings at once: nothing where there is none, or where a
/// user has to choose. A dangling link with a copy elsewhere is made to lead there.
std::optional<HealthRepairStrategy> safeRepair(const Host& host, const HealthIssue& issue);

/// What a repair will do, for a question: "remove the link". Pure.
std::string intent(const HealthIssue& issue, HealthRepairStrategy strategy);

}  // namespace tarvik::HealthRepair
