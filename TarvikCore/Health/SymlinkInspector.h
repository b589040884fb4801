#pragma once

#include "Health/HealthIssue.h"
#include "Platform/Machine/Host.h"

/// Tells how it stands with a link to an application.
namespace tarvik::SymlinkInspector {

/// One finding for each link, healthy or not, without its size: that of the target is meant, where it exists. The first
/// fault counts. A few status calls; blocks; any thread; never fails.
HealthIssue inspect(const Host& host, const fs::path& location, const fs::path& target);

}  // namespace tarvik::SymlinkInspector
