#pragma once

#include "Applications/AppEntry.h"
#include "MovePlan/MoveJob.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"
#include "Platform/Storage/DriveInfo.h"

#include <vector>

/// Turns chosen applications into jobs: one for each bundle, one for each data path. Settles what must not move.
namespace tarvik::MovePlanner {

/// The jobs that bring the applications to the drive, all pending, a bundle before its data; of several for one
/// destination only the first. Data that stands in other data comes with that, and a folder that holds a bundle of the
/// move is no data. The data of an application whose bundle stays is planned all the same. A bundle counts with the
/// size that its entry knows; data is measured here, so this takes as long as the data is large, and once it is
/// cancelled its sizes come out too small. Any thread.
std::vector<MoveJob> buildAppJobs(const Host& host, const std::vector<AppEntry>& entries, const DriveInfo& drive,
                                  bool includeData, const Cancellation& cancellation = {});

/// Whether this is a preference file in the system's own folder for them. A link in its place would not last: it is
/// replaced by a new file at the next change of a setting. Pure.
bool isUnsafePrefsPlist(const fs::path& path);

/// Whether the item exists and may move: it is no such preference file, and neither it nor a folder above it, up to an
/// application folder, is a link.
bool shouldMove(const Host& host, const fs::path& source);

}  // namespace tarvik::MovePlanner
