#include "Platform/Storage/DriveGuard.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Storage/DriveScanner.h"

#include <fmt/format.h>

#include <cerrno>

namespace tarvik {

namespace {

Failure disconnected(const std::string& further = {}) {
    return {"DriveGuard", ENODEV, "Target drive disconnected" + further};
}

std::uint64_t deviceAt(const fs::path& place) {
    const auto info = Files::infoFollowingLinks(place);
    if (!info) throw disconnected();
    return info->device;
}

/// The place itself, or the lowest folder above it that is there.
fs::path lowestPresent(fs::path place) {
    while (!Files::exists(place) && place != place.parent_path()) place = place.parent_path();
    return place;
}

}  // namespace

DriveGuard::DriveGuard(const fs::path& drive) : DriveGuard(deviceAt(drive)) {}

DriveGuard DriveGuard::ofMarked(const Host& host, const fs::path& mountPath, const std::optional<std::string>& mark) {
    const DriveGuard drive(mountPath);
    const auto markNow = DriveScanner::markOf(host, mountPath);
    const bool wasThere = !mark || !mark->empty();
    if (!markNow || !wasThere) throw disconnected();
    if (mark && mark != markNow) throw disconnected(fmt::format(". Another drive is at {} now.", mountPath.native()));
    return drive;
}

DriveGuard DriveGuard::ofFolder(const fs::path& folder) {
    return DriveGuard(lowestPresent(folder));
}

bool DriveGuard::holds(const fs::path& place) const {
    const auto info = Files::infoFollowingLinks(lowestPresent(place));
    return info && info->device == m_device;
}

void DriveGuard::require(const fs::path& place) const {
    if (!holds(place)) throw disconnected();
}

}  // namespace tarvik
