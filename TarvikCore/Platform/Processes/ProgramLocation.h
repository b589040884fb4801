#pragma once

#include "Platform/Basics/Path.h"

/// Where the running program stands: its helpers are found beside it.
namespace tarvik::ProgramLocation {

/// The running program's own file, links resolved. Empty when the system does not tell.
fs::path executable();
/// The folder that holds it.
fs::path folder();

}  // namespace tarvik::ProgramLocation
