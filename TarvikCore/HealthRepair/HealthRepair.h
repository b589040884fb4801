#pragma once

#include "Health/HealthIssue.h"
#include "HealthRepair/HealthRepairStrategy.h"
#include "Platform/Machine/Host.h"

#include <optional>
#include <string>
#include <vector>

/// Mends what the health check has found, one finding at a time and only on a user's word.
namespace tarvik::HealthRepair {

/// Carries a repair out. Blocks, for a copy of the data where that moves; any thread but the window's. @returns what
/// the user reads, which tells too when nothing could be done. @throws Failure with the sentence for the user: also
/// when the finding does not hold any more, and then nothing has been touched.
std::string perform(const Host& host, const HealthIssue& issue, HealthRepairStrategy strategy);

/// The repair of a finding that can do no harm, for many findings at once: it removes nothing and moves nothing.
/// Nothing where there is none. A dangling link with a copy elsewhere is made to lead there; one without stays, for its
/// drive may only be away.
std::optional<HealthRepairStrategy> safeRepair(const Host& host, const HealthIssue& issue);

/// The repair that a user means who names a finding and no way to mend it: the safe one, or the only one there is.
std::optional<HealthRepairStrategy> onlyRepair(const Host& host, const HealthIssue& issue);

/// All repairs of a finding, in their order. Empty where nothing mends it.
std::vector<HealthRepairStrategy> choices(const Host& host, const HealthIssue& issue);

/// What a repair will do, for a question: "remove the link".
std::string intent(const Host& host, const HealthIssue& issue, HealthRepairStrategy strategy);

}  // namespace tarvik::HealthRepair
