#pragma once

#include "Installers/Install/InstallTerms.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <string>
#include <vector>

/// The one way in: installs a source of any kind, and each thing that is found in an image or an archive.
namespace tarvik::SourceInstaller {

/// Installs what stands at the path by the installer of its kind, and gives the lines that tell what was done. What was
/// installed before a failure stays. Blocks, for minutes; any thread. The lines of the reporter come from this thread.
/// @throws Failure of the domain "install", 1 for a kind that has no installer; of an option or a path
/// (`InstallLinePath`) that cannot be used; what the installers throw.
std::vector<std::string> install(const Host& host, const fs::path& source, const InstallTerms& terms);

}  // namespace tarvik::SourceInstaller
