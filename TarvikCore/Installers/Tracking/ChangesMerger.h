#pragma once

#include "Installers/Tracking/FileSnapshot.h"

#include <string>
#include <vector>

/// What an install has changed, by all that was seen of it.
namespace tarvik::ChangesMerger {

/// Sorted as plain bytes, each once: the launcher and the bundle of each line "installed-app" of `actions`. When a
/// package was installed, which a line "installed-pkg" tells, also what is in `after` alone, and `livePaths`. Without a
/// package these are left out: nobody can say then that the installer has done what changed in those wide folders.
/// Pure.
std::vector<std::string> merge(const FileSnapshot& before, const FileSnapshot& after,
                               const std::vector<std::string>& actions, const std::vector<std::string>& livePaths);

}  // namespace tarvik::ChangesMerger
