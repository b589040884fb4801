#pragma once

#include "Installers/Install/InstallTerms.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <string>
#include <vector>

/// Runs a source that is a shell script.
namespace tarvik::ScriptSourceInstaller {

/// Runs the script with the system's bash, as this user or as root, for as long as it takes, where the option allows
/// scripts. Makes it executable for all where it is so for nobody. Logs "source", "run-script" with the tool, and the
/// one line that it returns: "ran-script" and the script, with a tab between them. Blocks; any thread.
/// @throws Failure of the domain "script-install": 20 where scripts are blocked, else the tool's status and words.
std::vector<std::string> install(const Host& host, const fs::path& source, const InstallTerms& terms);

}  // namespace tarvik::ScriptSourceInstaller
