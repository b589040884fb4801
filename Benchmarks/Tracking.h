#pragma once

#include "Platform/Basics/Path.h"

/// How quickly it is found what an installer has changed, and what watching it costs.
namespace tarvik::TrackingSpeed {

/// Makes a million files and lists them, and watches others being copied; prints tables.
void measure(int rounds);

/// Takes two snapshots of the folder, between which 10,000 files come, and compares them: what a program of its own
/// does, so that its memory can be seen.
void compareSnapshots(const fs::path& folder);

}  // namespace tarvik::TrackingSpeed
