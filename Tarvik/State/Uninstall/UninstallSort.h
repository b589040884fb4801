#pragma once

#include "Applications/AppRecord.h"

#include <array>
#include <string>
#include <vector>

namespace tarvik {

/// The order of the applications in the list of the Uninstall tab.
enum class UninstallSort {
    nameAZ,
    nameZA,
    sizeLargeSmall,
    sizeSmallLarge,
    dateNewest,
    dateOldest,
    verificationFirst,
    permissionsFirst,
};

/// All of them, in the order of the menu.
const std::array<UninstallSort, 8>& allUninstallSorts();
/// What the menu calls it, and what its button does.
std::string labelOf(UninstallSort sort);
std::string shortLabelOf(UninstallSort sort);
/// What heads the whole list; empty in order of size, where each range of sizes has a header.
std::string listHeaderOf(UninstallSort sort);
bool isSizeSort(UninstallSort sort);
/// The records in this order; what counts as equal keeps its own.
std::vector<AppRecord> sorted(std::vector<AppRecord> records, UninstallSort sort);

}  // namespace tarvik
