#pragma once

#include "Installers/Inspection/InstallerInspection.h"

#include <functional>
#include <string_view>

/// What an image and an archive have in common: they must be opened before anything can be told of them.
namespace tarvik::ContainedItems {

/// The record of a source in which `look` finds items, with that `status`; with the failure as its warning where `look`
/// throws. Never fails.
InstallerInspection inspection(const fs::path& source, InstallerKind kind, std::string_view status,
                               const std::function<std::vector<InstallableItem>()>& look);

}  // namespace tarvik::ContainedItems
