#pragma once

#include "Applications/AppRecord.h"

#include <array>
#include <chrono>
#include <set>
#include <string>

namespace tarvik {

/// Which applications the list of the Uninstall tab shows.
enum class UninstallFilter { all, unused, selected, incompatible };

/// All of them, in the order of the menu.
const std::array<UninstallFilter, 4>& allUninstallFilters();
std::string labelOf(UninstallFilter filter);
/// Whether the filter keeps the application: unused ones have not changed for 60 days before `now`, selected ones are
/// those whose ids are in `markedIds`.
bool keeps(UninstallFilter filter, const AppRecord& record, const std::set<std::string>& markedIds,
           std::chrono::system_clock::time_point now);

}  // namespace tarvik
