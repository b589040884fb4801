#pragma once

#include "Platform/Basics/Path.h"

#include <vector>

/// The root folder that a program of a machine in a folder sees.
namespace tarvik::MachineShell::RootView {

/// The folders that a Mac always has and that its programs may write in, below the machine's root.
const std::vector<fs::path>& standardFolders();

/// Where in its root a program finds the stand-ins, and links to those programs of the system that lie elsewhere.
inline constexpr const char* standInsPlace = "/.system/stand-ins";
inline constexpr const char* programsPlace = "/.system/programs";

/// Puts the machine at `root` in the place of everything that this process sees. For the child of `Namespace::fork`.
/// @throws Failure when the system refuses a step.
void enter(const fs::path& root, const fs::path& standIns, const std::vector<fs::path>& shown);

}  // namespace tarvik::MachineShell::RootView
