#pragma once

#include "Platform/Basics/Path.h"

#include <set>
#include <string>
#include <vector>

/// What stands directly in application folders: links and real bundles.
namespace tarvik::ApplicationsRootScan {

struct Link {
    fs::path location;
    /// Where it points, absolute and standardized, not resolved further.
    fs::path target;

    bool operator==(const Link&) const = default;
};

struct Result {
    /// Root by root, in byte order of their names.
    std::vector<Link> symlinks;
    /// The names of all other bundles, with their extension.
    std::set<std::string> realAppNames;

    bool operator==(const Result&) const = default;
};

/// Lists each root, not what is below it. What cannot be read is left out. Blocks; any thread; never fails.
Result scan(const std::vector<fs::path>& roots);

}  // namespace tarvik::ApplicationsRootScan
