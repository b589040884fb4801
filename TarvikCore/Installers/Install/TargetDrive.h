#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"
#include "Platform/Storage/DriveGuard.h"

#include <optional>
#include <string>

namespace tarvik {

/// The drive that a run installs applications on. Its volume is held from the beginning to the end of the run: what is
/// installed is written to that volume or to none, whatever comes to stand at its mount path meanwhile.
///
/// Blocks while the system answers; any thread.
class TargetDrive {
public:
    /// The drive that is mounted there, and bore this mark (`DriveScanner::markOf`) when the user chose it; without one
    /// any will do. @throws Failure "Target drive disconnected" when none is, or another one.
    TargetDrive(const Host& host, const fs::path& mountPath, const std::optional<std::string>& mark = std::nullopt);

    const fs::path& mountPath() const { return m_mountPath; }

    /// Whether `place`, which need not be there, is or will be on that volume.
    bool holds(const fs::path& place) const { return m_volume.holds(place); }
    /// @throws Failure "Target drive disconnected" when it is not.
    void require(const fs::path& place) const { m_volume.require(place); }

private:
    fs::path m_mountPath;
    DriveGuard m_volume;
};

}  // namespace tarvik
