#pragma once

#include "Installers/Reporting/InstallerRunReporter.h"
#include "Launchers/NestedAppLauncherCandidate.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <cstdint>
#include <string>
#include <vector>

/// Puts a launcher among the applications for each one that stands in a linked folder there, down to its direct
/// subfolders: the system's search does not look behind the link. A real application at a launcher's place is never
/// replaced. All block.
namespace tarvik::NestedAppLauncherService {

/// After the move of `source` to `destination`: installs what is needed when a folder has left /Applications, of
/// several with one name for the first. Never fails.
void installLaunchers(const Host& host, const fs::path& source, const fs::path& destination,
                      const InstallerRunReporter& reporter = InstallerRunReporter::silent) noexcept;
/// After the folder at `source` has come back from `destination`: disposes of the launchers that opened what is in it,
/// and opens nothing any more. Never fails.
void removeLaunchers(const Host& host, const fs::path& source, const fs::path& destination) noexcept;

/// The applications behind the links in `applicationRoot` whose launcher is not there or opens something else, by the
/// names of the links. Of several with one name only the first needs a launcher, and none when it opens one of them.
std::vector<NestedAppLauncherCandidate> missingCandidates(const Host& host, const fs::path& applicationRoot);

/// Installs all that is missing, or what is missing for one link. A launcher that fails is logged as
/// "launcher-repair-failed", and the others go on. @returns how many were installed.
std::int64_t installMissingLaunchers(const Host& host, const fs::path& applicationRoot,
                                     const InstallerRunReporter& reporter);
std::int64_t installMissingLaunchers(const Host& host, const fs::path& folderLink, const fs::path& applicationRoot,
                                     const InstallerRunReporter& reporter);

/// Whether the application that was at `target` is back, with its folder, among those in `applicationRoot`, and no link
/// there leads to `target`. A launcher for it stands for nothing: a way back that was killed leaves such ones.
bool hasComeBack(const Host& host, const fs::path& applicationRoot, const fs::path& target);

/// What the health check says of missing launchers. Pure.
std::string detail(const std::vector<NestedAppLauncherCandidate>& candidates);

}  // namespace tarvik::NestedAppLauncherService
