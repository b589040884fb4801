#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"
#include "Uninstall/UninstallCategory.h"
#include "UninstallRun/AppUninstallSession.h"

/// The places that an uninstall takes from: a record that names another one was not written by a run. Pure.
namespace tarvik::UninstallPlaces {

/// Whether an item of the category may have stood at the path when the application of the record was uninstalled: where
/// `RelatedPlaces` looks for things of that name and identifier; as a hidden item in the home, or as a cache of a
/// command line tool, of whatever name, since no record tells how the program was called; as a record of an installer;
/// or as an application, which may stand anywhere but among those of the system. Never what every program has its
/// things in, such as ~/.config, nor what this program keeps for itself. The path must be absolute and standardized,
/// without a NUL.
bool isOne(const Host& host, const AppUninstallSession& session, UninstallCategory category, const fs::path& path);

}  // namespace tarvik::UninstallPlaces
