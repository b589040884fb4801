#pragma once

#include "Platform/Basics/Cancellation.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <set>
#include <string>
#include <string_view>

/// Which applications a package says that it installs.
namespace tarvik::PackageAppTargets {

/// The names of the bundles directly in /Applications that a package's description tells of, at most one a line. What
/// the description tells of otherwise is not known. Pure.
std::set<std::string> namesIn(std::string_view description);

/// Their places on this machine. A package that cannot be opened within 15 seconds, or whose descriptions cannot be
/// read or are larger than any real one, has none. Never fails, and leaves nothing in the temporary folder; what a
/// killed one has left there is removed. Blocks; any thread.
std::set<fs::path> of(const Host& host, const fs::path& package, const Cancellation& cancellation = {});

}  // namespace tarvik::PackageAppTargets
