#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <optional>
#include <string>

/// Lets a launcher whose application has gone open another copy of the same application. All block; any thread; nothing
/// fails.
namespace tarvik::BrokenLauncherRepairService {

/// Writes another target into the launcher, signs it anew and tells the system. @returns what the user reads, also when
/// there is no other copy or the launcher cannot be written.
std::string repair(const Host& host, const fs::path& launcher);

/// Another copy of the launcher's application, among the applications of the system and then of the user, down to
/// folders in folders. Nothing when there is none; another launcher is none.
std::optional<fs::path> replacementTarget(const Host& host, const fs::path& launcher);

}  // namespace tarvik::BrokenLauncherRepairService
