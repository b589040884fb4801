#pragma once

#include "Applications/AppRecord.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <optional>
#include <string_view>

/// The application that a user means who names one to be uninstalled. Everything blocks; any thread.
namespace tarvik::UninstallTarget {

/// The record of the bundle at a path, wherever that is; nothing when what stands there is neither a bundle nor a link
/// that is named like one. Never fails.
std::optional<AppRecord> atPath(const Host& host, const fs::path& path);

/// The link or the launcher that stands among the applications for this bundle on a drive; the record itself when there
/// is none. Who uninstalls an application means what is seen of it: the copy on the drive goes when that is asked for.
/// Never fails.
AppRecord entryFor(const Host& host, const AppRecord& record);

/// The application with this name, bundle identifier or path, by the rules of `AppChoice`; where a link or a launcher
/// stands for a bundle on a drive, it is the link or the launcher. A path may lead to a bundle anywhere.
/// @throws Failure with the sentence for the user when no application or more than one fits.
AppRecord named(const Host& host, std::string_view wanted);

}  // namespace tarvik::UninstallTarget
