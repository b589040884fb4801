#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Where applications keep data in the user's Library and in the system's, by the names that they go by. Containers are
/// never among them: they must stay on the internal disk. Only paths are made here, nothing is looked up; a name that
/// could stand for anything but an item of its own gives none (see `DataName`).
namespace tarvik::LibraryDataPaths {

/// In the user's Library. Without an identifier there are none.
std::vector<fs::path> byBundleId(const fs::path& home, const std::optional<std::string>& bundleIdentifier);
std::vector<fs::path> byDisplayName(const fs::path& home, std::string_view name);
/// Of an application whose own bundle stands in the Application Support folder: that folder is not proposed.
std::vector<fs::path> supplementalByDisplayName(const fs::path& home, std::string_view name);
/// In the Library of the whole machine.
std::vector<fs::path> systemByBundleId(const Host& host, const std::optional<std::string>& bundleIdentifier);
std::vector<fs::path> systemByDisplayName(const Host& host, std::string_view name);

}  // namespace tarvik::LibraryDataPaths
