#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <chrono>

/// Volumes that are mounted and do not answer: a drive that hangs, a share whose server has gone. A call into one may
/// never return, and nothing can end it. What is on such a volume counts as away.
namespace tarvik::SilentVolumes {

/// How long a volume may take to answer that it is there.
inline constexpr std::chrono::milliseconds patience{3000};

/// The same machine with its silent volumes noted, beside those that were noted before. Asks each volume by a process
/// of its own; blocks for as long as the slowest takes, but not longer than `limit`. Any thread; never fails.
Host noted(const Host& host, std::chrono::milliseconds limit = patience);

/// Whether the path leads into a volume that is noted, by its text or by the links on its way. Such a volume is not
/// asked; without any, nothing is.
bool hold(const Host& host, const fs::path& path);

}  // namespace tarvik::SilentVolumes
