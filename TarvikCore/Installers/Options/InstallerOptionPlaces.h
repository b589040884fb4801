#pragma once

#include "Installers/Options/InstallerOption.h"
#include "Platform/Machine/Host.h"

/// Where an option puts things. Pure, and right only for an option that is safe (`InstallerOptionCheck`).
namespace tarvik::InstallerOptionPlaces {

/// The folder on the drive mounted at `drive` that receives applications.
fs::path applicationsOn(const fs::path& drive, const InstallerOption& option);
/// The folder of this machine, which may be one in a folder, that receives their launchers.
fs::path launchers(const Host& host, const InstallerOption& option);

}  // namespace tarvik::InstallerOptionPlaces
