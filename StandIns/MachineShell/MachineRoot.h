#pragma once

#include "Platform/Basics/Path.h"

#include <optional>

/// The machine in a folder that a stand-in works for.
namespace tarvik::MachineRoot {

/// The folder that the environment variable TARVIK_ROOT names, links resolved. Nothing when it names none, and for "/":
/// nothing here ever works on the machine that runs.
std::optional<fs::path> ofEnvironment();

/// A path of the machine as its own programs say it, "/Users/me/setup.sh": `path` may be said so, or begin with the
/// root. Nothing for a path that is not absolute.
std::optional<fs::path> pathInside(const fs::path& root, const fs::path& path);

/// The home folder of the machine's user as its own programs say it: what HOME names, when that is below the root, else
/// the only folder in Users, else the administrator's.
fs::path home(const fs::path& root);

}  // namespace tarvik::MachineRoot
