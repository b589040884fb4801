#include "Platform/Linux/VolumeRules.h"

#include "Platform/Files/Files.h"

#include <libmount/libmount.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <string_view>
#include <tuple>
#include <utility>

namespace tarvik::VolumeRules {

namespace {

// Mounted by the system for itself: neither the folder nor what is mounted below it is a place for a user's files.
constexpr std::string_view systemPlaces[] = {"/bin", "/boot",  "/dev",   "/efi",    "/etc", "/gnu",
                                             "/lib", "/lib32", "/lib64", "/libx32", "/nix", "/proc",
                                             "/run", "/sbin",  "/snap",  "/sys",    "/usr", "/var"};
constexpr std::string_view userPlaces[] = {"/media", "/mnt", "/run/media"};

bool isBelowUserPlace(const fs::path& path) {
    return std::any_of(std::begin(userPlaces), std::end(userPlaces),
                       [&](std::string_view place) { return path != place && Files::isAtOrBelow(path, place); });
}

bool isSystemPlace(const fs::path& path) {
    if (path == "/tmp" || path.native().starts_with("/boot")) return true;
    return std::any_of(std::begin(systemPlaces), std::end(systemPlaces),
                       [&](std::string_view place) { return Files::isAtOrBelow(path, place); });
}

bool hasHiddenComponent(const fs::path& path) {
    return std::any_of(path.begin(), path.end(), [](const fs::path& part) { return part.native().starts_with('.'); });
}

bool isMemory(std::string_view fileSystem) {
    return fileSystem == "tmpfs" || fileSystem == "ramfs";
}

// File systems of a host that a virtual machine sees: they stand on no device of this machine.
bool isSharedByHost(std::string_view fileSystem) {
    return fileSystem == "virtiofs" || fileSystem == "vboxsf" || fileSystem == "prl_fs" ||
           fileSystem == "fuse.vmhgfs-fuse";
}

bool isUserSpace(std::string_view fileSystem) {
    return fileSystem.starts_with("fuse");
}

bool isNetwork(const std::string& fileSystem) {
    return mnt_fstype_is_netfs(fileSystem.c_str()) != 0 || fileSystem == "ceph" || fileSystem == "fuse.glusterfs" ||
           fileSystem == "lustre" || fileSystem == "smbfs";
}

bool isPseudo(const std::string& fileSystem) {
    return mnt_fstype_is_pseudofs(fileSystem.c_str()) != 0 && !isMemory(fileSystem) && !isSharedByHost(fileSystem);
}

bool hasOption(std::string_view options, std::string_view wanted) {
    while (!options.empty()) {
        const std::size_t comma = std::min(options.find(','), options.size());
        const std::string_view option = options.substr(0, comma);
        if (option == wanted || (option.starts_with("comment=") && option.substr(8) == wanted)) return true;
        options.remove_prefix(std::min(comma + 1, options.size()));
    }
    return false;
}

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

std::optional<bool> isInternal(const DiskFacts& disk) {
    const std::string_view path = disk.devicePath;
    if (disk.hasRemovableMedium || disk.hangsOnRemovableDevice) return false;
    if (disk.bus == "usb" || disk.bus == "ieee1394" || contains(path, "/usb") || contains(path, "/fw")) return false;
    if (contains(path, "/mmc_host/")) return disk.cardType == "MMC";
    // A disk behind a network: its bus says "scsi", its place is elsewhere.
    if (contains(path, "/session") || contains(path, "/rport-") || contains(path, "/virtual/")) return std::nullopt;
    if (disk.bus == "ata" || contains(path, "/ata") || contains(path, "/nvme/") || contains(path, "/virtio") ||
        contains(path, "/vbd-") || contains(path, "/vmbus") || contains(path, "VMBUS"))
        return true;
    if (contains(path, "/pci") && contains(path, "/host")) return true;
    return std::nullopt;
}

/// Whether `mount` stands, in the tree of mounts, on `other`.
bool standsOn(const MountFacts& mount, const MountFacts& other, const std::map<int, const MountFacts*>& byId) {
    const MountFacts* step = &mount;
    for (std::size_t guard = 0; guard <= byId.size(); ++guard) {
        if (step->parentId == other.id) return true;
        const auto parent = byId.find(step->parentId);
        if (parent == byId.end() || parent->second == step) return false;
        step = parent->second;
    }
    return false;
}

/// Whether `cover` was mounted over the place where `mount` stands, so that no path leads there any more.
bool covers(const MountFacts& cover, const MountFacts& mount, const std::map<int, const MountFacts*>& byId) {
    if (cover.id == mount.id || !Files::isAtOrBelow(mount.mountPath, cover.mountPath)) return false;
    if (standsOn(mount, cover, byId)) return false;
    return cover.mountPath != mount.mountPath || standsOn(cover, mount, byId) || cover.id > mount.id;
}

/// The smaller, the better a place is for showing a file system that is mounted at several.
auto rankOfPlace(const MountFacts& mount) {
    return std::tuple(mount.mountPath != "/", mount.root != "/", !isBelowUserPlace(mount.mountPath),
                      mount.mountPath.native().size(), mount.mountPath.native());
}

}  // namespace

bool isBrowsable(const MountFacts& mount, const fs::path& home) {
    if (mount.mountPath == "/") return true;
    if (hasOption(mount.options, "x-gvfs-hide") || isPseudo(mount.fileSystem)) return false;
    if (hasOption(mount.options, "x-gvfs-show")) return true;
    if (hasHiddenComponent(mount.mountPath)) return false;

    if (isBelowUserPlace(mount.mountPath)) return true;
    if (home != "/" && Files::isAtOrBelow(mount.mountPath, home)) return true;
    return !isMemory(mount.fileSystem) && !isSystemPlace(mount.mountPath);
}

std::optional<bool> isInternal(const MountFacts& mount) {
    if (mount.mountPath == "/") return true;
    if (mount.isLoopDevice || isMemory(mount.fileSystem) || isSharedByHost(mount.fileSystem) ||
        isNetwork(mount.fileSystem))
        return false;

    bool allInternal = !mount.disks.empty();
    for (const DiskFacts& disk : mount.disks) {
        const auto internal = isInternal(disk);
        if (internal == false) return false;
        allInternal = allInternal && internal.has_value();
    }
    return allInternal ? std::optional(true) : std::nullopt;
}

bool mayNotAnswer(const MountFacts& mount) {
    return isNetwork(mount.fileSystem) || isSharedByHost(mount.fileSystem) || isUserSpace(mount.fileSystem);
}

std::string formatDescription(const MountFacts& mount) {
    static const std::map<std::string_view, std::string_view> words = {
        {"9p", "9P"},
        {"apfs", "APFS"},
        {"bcachefs", "Bcachefs"},
        {"btrfs", "Btrfs"},
        {"ceph", "Ceph"},
        {"cifs", "SMB"},
        {"exfat", "exFAT"},
        {"exfat-fuse", "exFAT"},
        {"f2fs", "F2FS"},
        {"glusterfs", "GlusterFS"},
        {"hfs", "HFS"},
        {"hfsplus", "HFS+"},
        {"iso9660", "ISO 9660"},
        {"jfs", "JFS"},
        {"msdos", "FAT"},
        {"nfs", "NFS"},
        {"nfs4", "NFS"},
        {"ntfs", "NTFS"},
        {"ntfs-3g", "NTFS"},
        {"ntfs3", "NTFS"},
        {"overlay", "Overlay"},
        {"ramfs", "Memory"},
        {"reiserfs", "ReiserFS"},
        {"smb3", "SMB"},
        {"squashfs", "SquashFS"},
        {"sshfs", "SSHFS"},
        {"tmpfs", "Memory"},
        {"udf", "UDF"},
        {"vfat", "FAT32"},
        {"virtiofs", "VirtioFS"},
        {"xfs", "XFS"},
        {"zfs", "ZFS"},
    };
    std::string_view type = mount.fileSystem;
    if (type == "fuseblk" && !mount.contentType.empty()) type = mount.contentType;
    for (const std::string_view prefix : {"fuse.", "fuseblk."})
        if (type.starts_with(prefix)) type.remove_prefix(prefix.size());
    const auto word = words.find(type);
    return std::string(word == words.end() ? type : word->second);
}

std::vector<MountFacts> listed(const std::vector<MountFacts>& table, const fs::path& home) {
    std::map<int, const MountFacts*> byId;
    for (const MountFacts& mount : table) byId[mount.id] = &mount;

    std::vector<const MountFacts*> candidates;
    std::map<std::uint64_t, const MountFacts*> bestOfDevice;
    for (const MountFacts& mount : table) {
        if (!isBrowsable(mount, home)) continue;
        if (std::any_of(table.begin(), table.end(),
                        [&](const MountFacts& other) { return covers(other, mount, byId); }))
            continue;
        candidates.push_back(&mount);
        const MountFacts*& best = bestOfDevice.try_emplace(mount.device, &mount).first->second;
        if (rankOfPlace(mount) < rankOfPlace(*best)) best = &mount;
    }

    std::vector<MountFacts> result;
    for (const MountFacts* mount : candidates)
        if (bestOfDevice[mount->device] == mount) result.push_back(*mount);
    return result;
}

}  // namespace tarvik::VolumeRules
