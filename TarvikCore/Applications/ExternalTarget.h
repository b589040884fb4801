#pragma once

#include "Applications/AppRecord.h"
#include "Platform/Basics/Path.h"

#include <optional>

/// The copy on a drive that an application's link or launcher leads to.
namespace tarvik::ExternalTarget {

/// Absolute and standardized: a link's text is taken from where the link stands. Nothing without a target, with one
/// that is the bundle itself, and for a launcher that names no absolute path. Pure: nobody has looked whether it is
/// there.
std::optional<fs::path> of(const AppRecord& app);

}  // namespace tarvik::ExternalTarget
