#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

/// The tool that runs a command as root: its arguments are the command's name and the command's arguments.
namespace tarvik::Rootferry {

/// Where it is: at its usual place, or else where a user keeps it in the home folder, which is not looked at. A machine
/// in a folder has its own or none: the user's would reach the machine that runs.
fs::path path(const Host& host);

}  // namespace tarvik::Rootferry
