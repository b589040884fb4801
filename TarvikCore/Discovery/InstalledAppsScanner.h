#pragma once

#include "Applications/AppRecord.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

/// Finds every application on the machine for the uninstaller: in the application folders, in the user's Application
/// Support, and where links and launchers lead. Sizes are not measured here: they stay 0.
namespace tarvik::InstalledAppsScanner {

/// Where applications are looked for, two folders deep in the first and four in the second.
std::vector<fs::path> scanRoots(const Host& host);
std::vector<fs::path> supplementalAppSupportRoots(const Host& host);

/// All applications, of several with one identifier the best, by display name in the user's language and then by path.
/// Blocks; any thread; what cannot be read is left out or shown with what is known of it.
std::vector<AppRecord> discover(const Host& host);

/// The record of one bundle; nothing when no item stands at the path.
std::optional<AppRecord> inspect(const Host& host, const fs::path& bundle);

/// The name to show: the one of the file, unless that is a shorter text than the one in the bundle. Pure.
std::string preferredDisplayName(const std::optional<std::string>& plistName, const std::string& folderName);

/// How much a record is the one to keep of several with one identifier: a real bundle before a link, a link before a
/// launcher, then what stands in `applications`, is measured, is named like its file, has changed within a year. Pure.
int canonicalScore(const AppRecord& record, const fs::path& applications, std::chrono::system_clock::time_point now);

/// Those without an identifier, and after them, by their identifiers, the best of all others; of equals the first.
/// Pure.
std::vector<AppRecord> dedupedByBundleId(std::vector<AppRecord> records, const fs::path& applications,
                                         std::chrono::system_clock::time_point now);

}  // namespace tarvik::InstalledAppsScanner
