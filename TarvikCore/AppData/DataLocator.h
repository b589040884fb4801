#pragma once

#include "Applications/AppIdentity.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"
#include "Records/InstallsDB.h"

#include <vector>

/// Answers which folders and files outside an application's bundle are its data.
namespace tarvik::DataLocator {

/// The files that the database of installs tracks for the application, then those found by its names, each once. All
/// exist. Blocks for some status calls and a look into the database; any thread; never fails.
std::vector<fs::path> locate(const Host& host, const AppIdentity& identity);
/// The same for one of many applications, with the database that has been opened for all of them.
std::vector<fs::path> locate(const Host& host, const AppIdentity& identity, InstallsDB::Reader& installs);

}  // namespace tarvik::DataLocator
