#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <string>

/// Brings data back that a link in a folder of the system's sandbox leads to. The copy on the drive stays, and the link
/// is kept under another name.
namespace tarvik::SandboxRestore {

/// Blocks for a copy; any thread. The copy grows under a hidden name and takes the link's place only when it has been
/// proved: half of one never stands there. @returns what the user reads, also when the copy fails and the link is back.
/// @throws Failure when the link cannot be renamed, and when the copy tool cannot be started: the link then stands
/// where it stood.
std::string run(const Host& host, const fs::path& link, const fs::path& target);

}  // namespace tarvik::SandboxRestore
