#include "Platform/Storage/DriveScanner.h"

#include "Platform/Files/FileSystemStatus.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/LastComponent.h"
#include "Platform/Machine/VolumeList.h"
#include "Platform/Storage/FileSystemAbilities.h"

#include <fmt/format.h>

#include <algorithm>

namespace tarvik::DriveScanner {

namespace {

/// What is usual for the format counts where the system does not tell of the volume itself.
void addUsualAbilities(DriveInfo& drive) {
    const auto usual = FileSystemAbilities::of(drive.filesystem.value_or(std::string{}));
    if (!usual) return;
    if (!drive.keepsLinks) drive.keepsLinks = usual->links;
    if (!drive.keepsPermissions) drive.keepsPermissions = usual->permissions;
    if (!drive.foldsNames) drive.foldsNames = usual->foldsCase;
    if (!drive.largestFile) drive.largestFile = usual->largestFile;
}

DriveInfo driveOf(const Volume& volume) {
    DriveInfo drive{
        .id = volume.mountPath.native(),
        .name = volume.name.value_or(std::string{}).empty() ? lastComponent(volume.mountPath) : *volume.name,
        .mountPath = volume.mountPath,
        .totalBytes = volume.totalBytes.value_or(0),
        .freeBytes = volume.availableBytes.value_or(0),
        .isInternal = volume.isInternal.value_or(false),
        .isWritable = !volume.isReadOnly.value_or(false),
        .filesystem = volume.formatDescription,
        .keepsLinks = volume.keepsLinks,
        .keepsPermissions = volume.keepsPermissions,
        .foldsNames = volume.foldsNames,
        .largestFile = volume.largestFile};
    addUsualAbilities(drive);
    return drive;
}

}  // namespace

std::vector<DriveInfo> scan(const Host& host) {
    std::vector<DriveInfo> drives;
    for (const Volume& volume : host.volumes->mounted())
        if (volume.isBrowsable.value_or(false)) drives.push_back(driveOf(volume));

    std::stable_sort(drives.begin(), drives.end(), [](const DriveInfo& left, const DriveInfo& right) {
        if (left.isInternal != right.isInternal) return left.isInternal;
        return left.name < right.name;
    });
    return drives;
}

std::optional<DriveInfo> holding(const Host& host, const fs::path& item) {
    const auto folder = Files::resolved(item.parent_path());
    const auto place = Files::info(folder.value_or(item.parent_path()));
    if (!folder || !place) return std::nullopt;
    std::optional<DriveInfo> deepest;
    for (const Volume& volume : host.volumes->mounted()) {
        const auto mountPath = Files::resolved(volume.mountPath);
        if (!mountPath || !Files::isAtOrBelow(*folder, *mountPath)) continue;
        const auto top = Files::info(*mountPath);
        if (!top || top->device != place->device) continue;
        if (!deepest || deepest->mountPath.native().size() < volume.mountPath.native().size())
            deepest = driveOf(volume);
    }
    return deepest;
}

bool isThere(const Host& host, const fs::path& mountPath) {
    return markOf(host, mountPath).has_value();
}

std::optional<std::string> markOf(const Host& host, const fs::path& mountPath) {
    const auto before = Files::infoFollowingLinks(mountPath);
    if (!before) return std::nullopt;
    const auto volume = host.volumes->at(mountPath);
    // The answer takes its time: the drive may have gone since it was given.
    const auto after = Files::infoFollowingLinks(mountPath);
    if (!volume || !after || after->device != before->device) return std::nullopt;
    if (volume->identifier) return *volume->identifier;
    const auto status = fileSystemStatus(mountPath);
    return fmt::format("{}-{}-{}", after->device, status ? status->identifier : 0, after->inode);
}

}  // namespace tarvik::DriveScanner
