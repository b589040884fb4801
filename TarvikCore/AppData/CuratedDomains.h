#pragma once

#include "AppData/OwnedPaths.h"

#include <optional>
#include <string>

/// What is known of certain applications beyond what their names tell.
namespace tarvik::CuratedDomains {

/// What an application of this bundle identifier owns, letters of either case alike; null for one that is not known.
/// Pure; what it points to lives as long as the program.
const OwnedPaths* entry(const std::optional<std::string>& bundleIdentifier);

}  // namespace tarvik::CuratedDomains
