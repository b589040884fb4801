#pragma once

#include "Applications/AppEntry.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <optional>
#include <vector>

/// Finds the applications that can be moved: quickly and without sizes at first, which are measured one application at
/// a time. Blocks; any thread; never fails: what cannot be read counts as absent.
namespace tarvik::AppScanner {

/// /Applications, and the user's own Applications folder if there is one.
std::vector<fs::path> scanRoots(const Host& host);

/// A row for each bundle in the roots, all sizes 0, by name in the user's language and then by path. A launcher whose
/// bundle cannot be reached has no row.
std::vector<AppEntry> discoverMetadata(const Host& host);

/// The row of one bundle; nothing for a launcher whose bundle cannot be reached. A launcher goes by the name, version
/// and identifier of the bundle that it opens.
std::optional<AppEntry> metadataEntry(const Host& host, const fs::path& bundle);

/// The entry with the sizes of its bundle and of each data path, also of those that take no space. Once it is
/// cancelled, sizes come out too small.
AppEntry computeSizes(const Host& host, const AppEntry& entry, const Cancellation& cancellation = {});

/// The bundle that a generated launcher opens, if it can be reached. Its path is standardized, not resolved.
std::optional<fs::path> launcherShimTarget(const fs::path& bundle);

/// Whether the bundle, or a folder above it up to /Applications, is a link. Outside of /Applications nothing is.
bool isSymbolicLinkOrInsideOne(const Host& host, const fs::path& bundle);

}  // namespace tarvik::AppScanner
