#pragma once

#include "Installers/Inspection/InstallableItem.h"
#include "Platform/Machine/Host.h"

#include <vector>

/// Finds what can be installed below a folder.
namespace tarvik::ContainedItemScanner {

/// The applications and packages below `root`, by path in byte order; hidden items are passed over, and nothing inside
/// a found one is looked at: the helpers of an application are no things to install. Nothing is found below what cannot
/// be listed. Never fails. Blocks; any thread.
std::vector<InstallableItem> scan(const Host& host, const fs::path& root);

}  // namespace tarvik::ContainedItemScanner
