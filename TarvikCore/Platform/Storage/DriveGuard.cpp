#include "Platform/Storage/DriveGuard.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Storage/DriveScanner.h"

#include <fmt/format.h>

#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>

namespace tarvik {

namespace {

Failure disconnected(const std::string& further = {}) {
    return {"DriveGuard", ENODEV, "Target drive disconnected" + further};
}

std::optional<std::uint64_t> deviceOf(const FileDescriptor& folder) {
    struct stat status {};
    if (!folder || ::fstat(folder.get(), &status) != 0) return std::nullopt;
    return static_cast<std::uint64_t>(status.st_dev);
}

/// That of the open folder, or of what stands at its path.
std::uint64_t deviceOf(const FileDescriptor& folder, const fs::path& path) {
    if (const auto device = deviceOf(folder)) return *device;
    const auto info = Files::infoFollowingLinks(path);
    if (!info) throw disconnected();
    return info->device;
}

/// The place itself, or the lowest folder above it that is there.
fs::path lowestPresent(fs::path place) {
    while (!Files::exists(place) && place != place.parent_path()) place = place.parent_path();
    return place;
}

}  // namespace

DriveGuard::DriveGuard(const fs::path& drive)
    : m_device(0),
      m_folder(std::make_shared<const FileDescriptor>(::open(drive.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))) {
    m_device = deviceOf(*m_folder, drive);
}

DriveGuard DriveGuard::ofMarked(const Host& host, const fs::path& mountPath, const std::optional<std::string>& mark) {
    DriveGuard drive(mountPath);
    const auto markNow = DriveScanner::markOf(host, mountPath);
    const bool wasThere = !mark || !mark->empty();
    // The mark is that of the path, and must be that of the volume which is held.
    if (!markNow || !wasThere || !drive.holds(mountPath)) throw disconnected();
    if (mark && mark != markNow) throw disconnected(fmt::format(". Another drive is at {} now.", mountPath.native()));
    return drive;
}

DriveGuard DriveGuard::ofFolder(const fs::path& folder) {
    return DriveGuard(lowestPresent(folder));
}

bool DriveGuard::holds(const fs::path& place) const {
    const auto info = Files::infoFollowingLinks(lowestPresent(place));
    // A volume that was torn out does not answer any more.
    const bool isThere = !*m_folder || deviceOf(*m_folder) == m_device;
    return isThere && info && info->device == m_device;
}

void DriveGuard::require(const fs::path& place) const {
    if (!holds(place)) throw disconnected();
}

}  // namespace tarvik
