#pragma once

#include "Platform/Basics/Path.h"

/// Where the running program stands: its helpers are found beside it.
namespace tarvik::ProgramLocation {

/// The running program's own file, links resolved. Empty when the system does not tell.
fs::path executable();
/// The folder that holds it.
fs::path folder();

/// A file or folder that came with the programs: it stands beside the running one, or among the `resources`. Links in
/// its path are resolved; empty when it is nowhere.
fs::path resource(const fs::path& name);
/// Where the programs' data is when they are installed: the folder for that in the bundle on a Mac, share/tarvik beside
/// the libexec of the programs elsewhere. It need not be there.
fs::path resources();

}  // namespace tarvik::ProgramLocation
