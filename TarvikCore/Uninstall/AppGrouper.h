#pragma once

#include "Applications/AppRecord.h"
#include "Uninstall/UninstallGroup.h"

#include <vector>

/// Folds the applications of one vendor into one line of the uninstaller's list. Pure; safe on every thread.
namespace tarvik::AppGrouper {

/// The groups of two and more applications whose bundle identifiers begin with the same two pieces, sorted by label.
/// Members keep the order of `records`. What belongs to the system joins no group, nor does an identifier whose second
/// piece names no vendor.
std::vector<UninstallGroup> group(const std::vector<AppRecord>& records);

/// The records that no group of `records` holds, in their order.
std::vector<AppRecord> ungrouped(const std::vector<AppRecord>& records);

}  // namespace tarvik::AppGrouper
