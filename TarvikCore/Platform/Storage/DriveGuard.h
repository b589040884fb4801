#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace tarvik {

struct Host;

/// The volume that a drive is, held on to for the length of an act. A drive that goes away can leave its mount path
/// behind as a folder of the disk below: what is written there would fill that disk, and the user would look for it on
/// the drive.
///
/// The volume's folder is held open meanwhile: a drive that is written to cannot be ejected, and nothing that is
/// mounted in the place of one that has been torn out gets its number.
///
/// Blocks while the system answers; any thread.
class DriveGuard {
public:
    /// The volume that the folder `drive` is on. @throws Failure "Target drive disconnected" when nothing stands there.
    explicit DriveGuard(const fs::path& drive);
    /// The same for the drive that bore this mark (`DriveScanner::markOf`) when the user chose it; an empty one was not
    /// there, and without one any will do. @throws Failure also when another drive stands at the path now.
    static DriveGuard ofMarked(const Host& host, const fs::path& mountPath, const std::optional<std::string>& mark);
    /// The volume that `folder`, which need not be there, is or will be on.
    static DriveGuard ofFolder(const fs::path& folder);

    /// Whether `place`, which need not be there, is or will be on that volume.
    bool holds(const fs::path& place) const;
    /// @throws Failure "Target drive disconnected" when it is not.
    void require(const fs::path& place) const;

    /// Whether both hold the same volume.
    bool operator==(const DriveGuard& other) const { return m_device == other.m_device; }

private:
    std::uint64_t m_device;
    /// Closed where the folder may be passed through only.
    std::shared_ptr<const FileDescriptor> m_folder;
};

}  // namespace tarvik
