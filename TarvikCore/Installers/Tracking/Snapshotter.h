#pragma once

#include "Installers/Tracking/FileSnapshot.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <string>
#include <vector>

/// What an install has added, by two listings of the places where installers put things, one before and one after it.
namespace tarvik::Snapshotter {

/// The folders that any installer may write to: applications, support files, what the system starts by itself; the
/// machine's and the user's. Pure: they need not be there.
std::vector<fs::path> defaultRoots(const Host& host);

/// Each root that exists, and all below it with the contents of bundles; hidden items and what is in them are passed
/// over, links listed and not followed. A root that is no folder, a link to one too, or cannot be read gives itself
/// alone; one that is not there gives nothing. Roots may lie in each other. What comes or goes meanwhile may be in it
/// or not. Blocks; any thread; never fails.
FileSnapshot capture(const std::vector<fs::path>& roots);

/// The paths that are in `after` alone, sorted as plain bytes. What has gone, and a file whose place another one has
/// taken, does not show. Pure.
std::vector<std::string> added(const FileSnapshot& before, const FileSnapshot& after);

}  // namespace tarvik::Snapshotter
