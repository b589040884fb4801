#pragma once

#include "Installers/Install/ItemInstaller.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Machine/Host.h"

/// Installs what is found in opened images and archives.
namespace tarvik::ContainedItemsInstaller {

/// Installs all that `ContainedItemScanner` finds below the folder, in its order, and adds to `lines` what was done.
/// The first item that fails ends it: later ones are not tried, and earlier ones stay installed. Blocks; any thread.
/// @throws what the installer throws, and when it is cancelled before the next item.
void install(const Host& host, const fs::path& folder, const ItemInstaller& installItem,
             const Cancellation& cancellation, std::vector<std::string>& lines);

}  // namespace tarvik::ContainedItemsInstaller
