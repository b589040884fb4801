#pragma once

#include "Health/HealthIssue.h"
#include "Platform/Machine/Host.h"

#include <optional>

/// Compares what the tracking database knows of an application with the disk.
namespace tarvik::TrackedFilesChecker {

/// A finding when tracked files of the application behind a healthy link are missing. Blocks; any thread; never fails:
/// without the database, or an entry in it, there is nothing to find.
std::optional<HealthIssue> check(const Host& host, const fs::path& location, const fs::path& target);

}  // namespace tarvik::TrackedFilesChecker
