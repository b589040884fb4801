#pragma once

#include "Platform/Machine/Host.h"
#include "Uninstall/UninstallCategory.h"

/// The places that uninstalls take from: a record that names another one was not written by a run. Pure.
namespace tarvik::UninstallPlaces {

/// Whether an item of the category may have stood at the path: directly in one of the folders of the Library in the
/// home or of the machine that hold data of applications, as a hidden item in the home, or as an application, which may
/// stand anywhere but among those of the system. The path must be absolute and standardized.
bool isOne(const Host& host, UninstallCategory category, const fs::path& path);

}  // namespace tarvik::UninstallPlaces
