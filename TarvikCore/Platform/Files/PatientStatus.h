#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/FileSystemStatus.h"

#include <chrono>
#include <optional>
#include <vector>

/// Asks file systems that may never answer: a network volume whose server has gone, a volume that a hung program
/// serves.
namespace tarvik::PatientStatus {

/// The status of the folder at each path, in the same order; nothing for one that is no folder, cannot be read, or has
/// not answered in time. All are asked at once, so that the call takes `patience` at most.
///
/// A call to a dead file system cannot be taken back, so each is made by a process of its own, which the system's alarm
/// ends: no thread of this program is ever stuck in one.
std::vector<std::optional<FileSystemStatus>> read(const std::vector<fs::path>& paths,
                                                  std::chrono::milliseconds patience);

/// Those of the paths that have not answered in time, be it to say that nothing stands there. The same way of asking.
std::vector<fs::path> silent(const std::vector<fs::path>& paths, std::chrono::milliseconds patience);

}  // namespace tarvik::PatientStatus
