#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <optional>
#include <string>

/// Tells which applications are never uninstalled.
namespace tarvik::UninstallRefusal {

/// Why the bundle, or the link at its place, may not go, as one sentence for the user; nothing when it may. It is the
/// system's, by whatever way it was reached; it is none of the machine's; or it is in the Trash already. A few status
/// calls; blocks; any thread; never fails.
std::optional<std::string> of(const Host& host, const fs::path& bundle);

}  // namespace tarvik::UninstallRefusal
