#pragma once

#include "Launchers/LauncherEntry.h"
#include "Platform/Basics/Dialog.h"
#include "Platform/Machine/Host.h"

#include <cstdint>
#include <string>
#include <vector>

/// The launchers of this machine: which there are, which are needed, what is wrong with them, and how they are mended.
namespace tarvik::LauncherInventory {

/// Those that stand in /Applications and in the user's own Applications folder, and those that applications behind
/// links in /Applications still need, by path. Blocks; never fails: what cannot be read is left out.
std::vector<LauncherEntry> list(const Host& host);

/// Makes a launcher that is repairable anew; a needless one goes to the Trash. Blocks. @throws Failure
void repair(const Host& host, const LauncherEntry& entry);

/// Asks whether the repairable ones shall be made anew. The first button is "Repair". Pure.
Dialog confirmRepair(const std::vector<LauncherEntry>& repairable);
/// What the user reads when `count` were repaired. Pure.
std::string repaired(std::int64_t count);

}  // namespace tarvik::LauncherInventory
