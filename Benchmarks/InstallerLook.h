#pragma once

#include "Platform/Basics/Path.h"

/// How an image or an archive is looked through for what can be installed.
namespace tarvik::InstallerLook {

void measure(int rounds);
/// The act alone, for a tracer of system calls.
void scan(const fs::path& folder);

}  // namespace tarvik::InstallerLook
