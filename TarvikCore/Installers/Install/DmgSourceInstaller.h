#pragma once

#include "Installers/Install/InstallTerms.h"
#include "Installers/Install/ItemInstaller.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <string>
#include <vector>

/// Installs a source that is a disk image.
namespace tarvik::DmgSourceInstaller {

/// Attaches the image, installs what is in each of its volumes, and detaches it, also after a failure. Logs "source"
/// and "dmg-mounted" with the number of volumes. Gives the lines of all items in their order. Blocks; any thread.
/// @throws what `DiskImageMounter` and the installer of items throw.
std::vector<std::string> install(const Host& host, const fs::path& source, const InstallTerms& terms,
                                 const ItemInstaller& installItem);

}  // namespace tarvik::DmgSourceInstaller
