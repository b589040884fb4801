#pragma once

#include "Platform/Machine/Host.h"
#include "Platform/Machine/RunningApplication.h"

#include <chrono>
#include <set>
#include <string_view>
#include <vector>

/// Whether an application is in use, and the request to quit it: a running application must not be moved or removed.
///
/// Three sources are asked, because none is enough alone: the machine's list of running applications, which may leave
/// out helpers and daemons, and on a Mac what was started since the main run loop turned last (NSWorkspace); the lines
/// of the process list, which name bundles in arguments, but may be cut; and the programs of the process table. Blocks;
/// never throws. Call it from background work.
namespace tarvik::RunningAppsDetector {

/// All bundles that are in use now, standardized. A path in a process's arguments counts as well, but not in those of
/// this process and of the ones that started it: they name what they are asked to move, and count only for the bundles
/// that their programs stand in. Whoever has several bundles to test takes the set once.
std::set<fs::path> bundlePaths(const Host& host);
/// Whether the bundle is among them: by its path, standardized, or as the same item by another spelling. A volume may
/// fold case and normal forms, and a Mac's tools may answer in others. Looks at the disk only for bundles whose names
/// such a volume takes for the same.
bool isAmong(const std::set<fs::path>& bundles, const fs::path& bundlePath);
/// Whether the bundle at this path is in use.
bool isRunning(const Host& host, const fs::path& bundlePath);
/// Whether a line of the process list contains the name, without regard to case.
bool containsProcess(const Host& host, std::string_view name);
/// The entries of the machine's list of running applications for this bundle.
std::vector<RunningApplication> runningInstances(const Host& host, const fs::path& bundlePath);

/// How long an application that is ended by force may take.
inline constexpr std::chrono::seconds forcedQuitTimeout{3};

/// Asks the bundle's running instances to quit and waits up to `timeout` for that; with `force` it then ends those that
/// are left and waits up to `forcedTimeout`. Processes that the machine's list does not have are left alone.
/// @returns whether no instance is left: at once, asking nothing, when there is none.
bool quit(const Host& host, const fs::path& bundlePath, bool force, std::chrono::duration<double> timeout,
          std::chrono::duration<double> forcedTimeout = forcedQuitTimeout);

/// The bundles that lines of the process list name, standardized: from a slash, the shortest text without a quotation
/// mark that ends in ".app", where "/Contents/", white space or the end of the line follows. A line is read on behind
/// what followed.
std::set<fs::path> bundlePathsIn(const std::vector<std::string_view>& lines);

/// `lines` without one line for each of `others`, however wide the columns of either list are. Pure.
std::vector<std::string_view> linesWithout(std::vector<std::string_view> lines,
                                           const std::vector<std::string_view>& others);

}  // namespace tarvik::RunningAppsDetector
