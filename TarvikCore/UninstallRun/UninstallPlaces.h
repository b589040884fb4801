#pragma once

#include "Platform/Machine/Host.h"
#include "Uninstall/UninstallCategory.h"

/// The places that uninstalls take from: a record that names another one was not written by a run. Pure.
namespace tarvik::UninstallPlaces {

/// Whether an item of the category may have stood at the path: directly in one of the folders of the Library in the
/// home or of the machine that hold data of applications, as a hidden item in the home, or as an application, which may
/// stand anywhere but among those of the system. Never what every program has its things in, such as ~/.config, nor
/// what this program keeps, but for what an installer has recorded of an application. The path must be absolute and
/// standardized, without a NUL.
bool isOne(const Host& host, UninstallCategory category, const fs::path& path);

}  // namespace tarvik::UninstallPlaces
