#pragma once

#include "Platform/Basics/Path.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarvik {

/// What the system tells of one physical disk.
struct DiskFacts {
    /// Its place in the tree of devices: "/devices/pci0000:00/0000:00:14.0/usb1/1-1/...".
    std::string devicePath;
    /// The device database's word for its bus, "usb", "ata"; empty without a database.
    std::string bus;
    /// "MMC" for a soldered memory card, "SD" for one in a slot; empty for other disks.
    std::string cardType;
    /// Whether the medium can be taken out of the disk.
    bool hasRemovableMedium = false;
    /// Whether a device on the way to the disk is marked as one that can be unplugged.
    bool hangsOnRemovableDevice = false;

    bool operator==(const DiskFacts&) const = default;
};

/// What the system tells of one mount.
struct MountFacts {
    int id = 0;
    int parentId = 0;
    fs::path mountPath;
    /// The part of the file system that is mounted: "/" for all of it, another folder for a bind mount.
    fs::path root = "/";
    /// As the mount table spells it: "ext4", "fuse.sshfs".
    std::string fileSystem;
    /// The device or the share, as the mount table spells it: "/dev/sdb1", "server:/files".
    std::string source;
    /// Comma separated, those for user programs ("x-gvfs-hide") too.
    std::string options;
    /// Mounts of one file system have one number.
    std::uint64_t device = 0;
    /// The device database's word for the content of the device, where the mount table names a driver only ("fuseblk").
    std::string contentType;
    bool isLoopDevice = false;
    /// The disks below the device, several for a striped one; none when the system does not tell.
    std::vector<DiskFacts> disks;

    bool operator==(const MountFacts&) const = default;
};

/// Judges mounts by what is known of them. Pure.
namespace VolumeRules {

/// Whether a file manager would show it: not pseudo, not the system's own, not hidden. `home` is the user's.
bool isBrowsable(const MountFacts& mount, const fs::path& home);
/// Whether it is part of this machine; nothing when what is known does not tell.
std::optional<bool> isInternal(const MountFacts& mount);
/// Whether an answer may depend on a server or a program that has gone.
bool mayNotAnswer(const MountFacts& mount);
/// The format in words: "ext4", "exFAT", "NTFS".
std::string formatDescription(const MountFacts& mount);
/// The mounts to list, in the table's order: the browsable ones that no later mount covers, each file system once, at
/// its best place.
std::vector<MountFacts> listed(const std::vector<MountFacts>& table, const fs::path& home);

}  // namespace VolumeRules

}  // namespace tarvik
