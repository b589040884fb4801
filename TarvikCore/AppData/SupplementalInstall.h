#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

/// Applications that came with another one and stand in its Application Support folder.
namespace tarvik::SupplementalInstall {

/// Whether a bundle at this path is one, by its text alone.
bool matches(const Host& host, const fs::path& bundlePath);

}  // namespace tarvik::SupplementalInstall
