#pragma once

#include "Installers/Install/InstallTerms.h"
#include "Installers/Install/ItemInstaller.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <string>
#include <vector>

/// Installs a source that is a zip archive.
namespace tarvik::ZipSourceInstaller {

/// Expands the archive, installs what is in it, and disposes of what was expanded, also after a failure. Logs "source".
/// Gives the lines of all items in their order. Blocks; any thread. @throws what `ZipExpander` and the installer of
/// items throw.
std::vector<std::string> install(const Host& host, const fs::path& source, const InstallTerms& terms,
                                 const ItemInstaller& installItem);

}  // namespace tarvik::ZipSourceInstaller
