#pragma once

#include "Applications/AppIdentity.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <vector>

/// Finds an application's data by the names that it goes by.
namespace tarvik::AssociatedDataPaths {

/// What exists of the places where an application of this identity keeps data, in a fixed order, twice when two rules
/// name one place. Blocks for a status call a place; any thread; never fails.
std::vector<fs::path> locate(const Host& host, const AppIdentity& identity);

}  // namespace tarvik::AssociatedDataPaths
