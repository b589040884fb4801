#pragma once

#include "Platform/Basics/Path.h"

#include <string_view>
#include <vector>

/// Finds application bundles below a folder. Bundles are never looked into; links to folders are walked like folders,
/// but never back into a folder that the walk is in. What cannot be read counts as empty. Blocks; any thread; never
/// fails.
namespace tarvik::AppBundleEnumerator {

/// How far below the root a bundle is found: in a folder of a folder of it.
inline constexpr int defaultMaxDepth = 2;

/// Whether the name alone makes an item a bundle, be it a folder, a file or a link. Pure.
bool isBundleName(std::string_view name);

/// The bundles below `root`, in the order of the walk: names in byte order, a folder's contents where the folder
/// stands. Each path begins with `root` as given, also where links lead away from it.
std::vector<fs::path> bundles(const fs::path& root, int maxDepth = defaultMaxDepth);
/// Whether there is any, found without going through the rest.
bool holdsBundle(const fs::path& root, int maxDepth = defaultMaxDepth);

}  // namespace tarvik::AppBundleEnumerator
