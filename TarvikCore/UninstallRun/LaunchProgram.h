#pragma once

#include "Platform/Machine/Host.h"

#include <optional>

/// What a launch agent or daemon of a Mac starts.
namespace tarvik::LaunchProgram {

/// The program that the job description `plist` names (launchd.plist(5): `Program`, or else the first of
/// `ProgramArguments`), as it stands on this host. Nothing when it names none by an absolute path. Blocks; any thread;
/// never fails.
std::optional<fs::path> of(const Host& host, const fs::path& plist);

}  // namespace tarvik::LaunchProgram
