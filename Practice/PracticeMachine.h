#pragma once

#include "Platform/Basics/Path.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// Makes a whole small machine in a folder: applications, a home with data, two drives. A place to see the system work
/// without risking a file, and what tests and benchmarks run on.
namespace tarvik::Practice {

struct Options {
    /// Plain applications in the machine's Applications folder.
    std::size_t apps = 6;
    /// Some forty more, of every kind and at every place that the system tells apart, with their data.
    bool specialApps = true;
    /// One finding of each kind that the health check tells apart, and some healthy ones. Some of them are among the
    /// special applications, which the machine then has in any case.
    bool broken = false;
    /// Files in the user's home and on the drives together, without what belongs to applications.
    std::size_t files = 300;
    /// Files of the plain applications together, in their bundles and among the user's data, beyond the few that every
    /// application has. Small ones.
    std::size_t appFiles = 0;
    /// The same seed gives the same names, bytes, permissions and times.
    std::uint64_t seed = 1;
};

/// What stands in the folder now.
struct Machine {
    fs::path root;
    fs::path home;
    /// The mount paths under `root`/Volumes, in byte order.
    std::vector<fs::path> drives;
    /// Counts of everything below the root, and the files' bytes.
    std::int64_t files = 0;
    std::int64_t folders = 0;
    std::int64_t links = 0;
    std::int64_t bytes = 0;
};

/// Builds the machine in `folder`, which is made if it is missing. Blocks; one caller at a time for one folder.
/// @throws Failure when something stands in the folder already, and when there is no tool to sign with for what shall
/// be broken; FileError when it cannot be written.
Machine build(const fs::path& folder, const Options& options = {});

}  // namespace tarvik::Practice
