#include "Platform/Linux/VolumeRules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

using testing::ElementsAre;

const fs::path home = "/home/anna";

const DiskFacts sataDisk{.devicePath = "/devices/pci0000:00/0000:00:17.0/ata1/host0/target0:0:0/0:0:0:0/block/sda",
                         .bus = "ata",
                         .cardType = "",
                         .hasRemovableMedium = false,
                         .hangsOnRemovableDevice = false};

DiskFacts diskAt(const std::string& devicePath) {
    DiskFacts disk;
    disk.devicePath = devicePath;
    return disk;
}

const DiskFacts usbDisk =
    diskAt("/devices/pci0000:00/0000:00:14.0/usb1/1-2/1-2:1.0/host6/target6:0:0/6:0:0:0/block/sdb");

MountFacts mountOf(const fs::path& mountPath, const std::string& fileSystem, const std::string& options = "rw") {
    MountFacts mount;
    mount.mountPath = mountPath;
    mount.fileSystem = fileSystem;
    mount.options = options;
    return mount;
}

MountFacts diskMount(const DiskFacts& disk) {
    MountFacts mount = mountOf("/media/anna/Disk", "ext4");
    mount.disks = {disk};
    return mount;
}

TEST(VolumeRules, ShowWhatAUserPutsFilesOn) {
    const MountFacts shown[] = {
        mountOf("/", "ext4"),
        mountOf("/", "overlay"),
        mountOf("/home", "btrfs"),
        mountOf("/data", "xfs"),
        mountOf("/srv/files", "ext4"),
        mountOf("/mnt", "ext4"),
        mountOf("/mnt/disk", "ext4"),
        mountOf("/media/anna/STICK", "vfat"),
        mountOf("/media/anna/Old", "fuseblk"),
        mountOf("/run/media/anna/Backup", "exfat"),
        mountOf("/home/anna", "ext4"),
        mountOf("/home/anna/drive", "tmpfs"),
        mountOf("/mnt/memory", "tmpfs"),
        mountOf("/media/memory", "ramfs"),
        mountOf("/run/media/anna/memory", "tmpfs"),
        mountOf("/mnt/server", "nfs4"),
        mountOf("/home/anna/server", "fuse.sshfs"),
        mountOf("/media/share", "cifs"),
        mountOf("/mnt/host", "virtiofs"),
        mountOf("/mnt/host", "9p"),
        mountOf("/media/anna/Image", "iso9660", "ro"),
        mountOf("/var/data", "ext4", "rw,x-gvfs-show"),
        mountOf("/tmp/image", "ext4"),
    };
    for (const MountFacts& mount : shown)
        EXPECT_TRUE(VolumeRules::isBrowsable(mount, home)) << mount.mountPath << " " << mount.fileSystem;
}

TEST(VolumeRules, HideWhatTheSystemMountsForItself) {
    const MountFacts hidden[] = {
        mountOf("/proc", "proc"),
        mountOf("/sys", "sysfs"),
        mountOf("/sys/fs/cgroup", "cgroup2"),
        mountOf("/sys/firmware/efi/efivars", "efivarfs"),
        mountOf("/dev", "devtmpfs"),
        mountOf("/dev/shm", "tmpfs"),
        mountOf("/dev/hugepages", "hugetlbfs"),
        mountOf("/run", "tmpfs"),
        mountOf("/run/lock", "tmpfs"),
        mountOf("/run/user/1000", "tmpfs"),
        mountOf("/run/user/1000/gvfs", "fuse.gvfsd-fuse"),
        mountOf("/run/user/1000/doc", "fuse.portal"),
        mountOf("/run/media", "tmpfs"),
        mountOf("/run/mediaeval/disk", "ext4"),
        mountOf("/tmp", "tmpfs"),
        mountOf("/tmp", "ext4"),
        mountOf("/tmp/memory", "tmpfs"),
        mountOf("/opt/memory", "tmpfs"),
        mountOf("/boot", "ext4"),
        mountOf("/boot/efi", "vfat"),
        mountOf("/bootloader", "vfat"),
        mountOf("/efi", "vfat"),
        mountOf("/usr", "ext4"),
        mountOf("/var", "ext4"),
        mountOf("/var/lib/docker/overlay2/0a/merged", "overlay"),
        mountOf("/var/lib/snapd/snap/core/1", "squashfs"),
        mountOf("/snap/core/1", "squashfs"),
        mountOf("/nix/store", "ext4"),
        mountOf("/etc/hosts", "ext4"),
        mountOf("/mnt/layers", "overlay"),
        mountOf("/mnt/automatic", "autofs"),
        mountOf("/home/anna/.cache/drive", "ext4"),
        mountOf("/mnt/.hidden", "ext4"),
        mountOf("/tmp/.mount_Editor", "fuse.Editor.AppImage"),
        mountOf("/mnt/disk", "ext4", "rw,x-gvfs-hide,relatime"),
        mountOf("/mnt/disk", "ext4", "rw,comment=x-gvfs-hide"),
        mountOf("/proc/show", "proc", "rw,x-gvfs-show"),
    };
    for (const MountFacts& mount : hidden)
        EXPECT_FALSE(VolumeRules::isBrowsable(mount, home)) << mount.mountPath << " " << mount.fileSystem;
}

TEST(VolumeRules, TakeNoOptionForAnotherThatItIsPartOf) {
    EXPECT_TRUE(VolumeRules::isBrowsable(mountOf("/mnt/disk", "ext4", "rw,x-gvfs-hidemore"), home));
    EXPECT_TRUE(VolumeRules::isBrowsable(mountOf("/mnt/disk", "ext4", ",,"), home));
    EXPECT_TRUE(VolumeRules::isBrowsable(mountOf("/mnt/disk", "ext4", ""), home));
}

TEST(VolumeRules, TakeNoHomeAtTheRootForAUsersFolder) {
    EXPECT_FALSE(VolumeRules::isBrowsable(mountOf("/run/lock", "tmpfs"), "/"));
    EXPECT_FALSE(VolumeRules::isBrowsable(mountOf("/boot", "ext4"), "/"));
}

TEST(VolumeRules, CallFixedDisksInternal) {
    EXPECT_EQ(VolumeRules::isInternal(diskMount(sataDisk)), true);
    for (const char* path : {"/devices/pci0000:00/0000:00:1d.0/0000:01:00.0/nvme/nvme0/nvme0n1",
                             "/devices/pci0000:00/0000:00:02.0/virtio1/block/vda", "/devices/vbd-51712/block/xvda",
                             "/devices/LNXSYSTM:00/LNXSYBUS:00/ACPI0004:00/VMBUS:00/f8b3781a/host0/block/sda",
                             "/devices/pci0000:00/0000:00:10.0/host2/target2:0:0/2:0:0:0/block/sda"}) {
        EXPECT_EQ(VolumeRules::isInternal(diskMount(diskAt(path))), true) << path;
    }
}

TEST(VolumeRules, CallDisksThatCanBeUnpluggedExternal) {
    EXPECT_EQ(VolumeRules::isInternal(diskMount(usbDisk)), false);

    DiskFacts byDatabase = diskAt("/devices/somewhere/block/sdb");
    byDatabase.bus = "usb";
    EXPECT_EQ(VolumeRules::isInternal(diskMount(byDatabase)), false);

    DiskFacts optical = sataDisk;
    optical.hasRemovableMedium = true;
    EXPECT_EQ(VolumeRules::isInternal(diskMount(optical)), false);

    DiskFacts thunderbolt = diskAt("/devices/pci0000:00/0000:00:1c.0/0000:05:00.0/nvme/nvme1/nvme1n1");
    thunderbolt.hangsOnRemovableDevice = true;
    EXPECT_EQ(VolumeRules::isInternal(diskMount(thunderbolt)), false);

    EXPECT_EQ(VolumeRules::isInternal(diskMount(diskAt("/devices/pci0000:00/0000:03:00.0/fw1/fw1.0/host7/block/sdc"))),
              false);
}

TEST(VolumeRules, TellACardFromSolderedMemory) {
    DiskFacts card = diskAt("/devices/pci0000:00/0000:00:1a.0/mmc_host/mmc0/mmc0:0001/block/mmcblk0");
    card.cardType = "SD";
    EXPECT_EQ(VolumeRules::isInternal(diskMount(card)), false);
    card.cardType = "MMC";
    EXPECT_EQ(VolumeRules::isInternal(diskMount(card)), true);
}

TEST(VolumeRules, AdmitWhatTheyDoNotKnow) {
    EXPECT_EQ(VolumeRules::isInternal(mountOf("/mnt/pool", "zfs")), std::nullopt);
    EXPECT_EQ(VolumeRules::isInternal(mountOf("/mnt/drive", "fuse.mergerfs")), std::nullopt);
    EXPECT_EQ(VolumeRules::isInternal(diskMount(diskAt("/devices/virtual/block/zram0"))), std::nullopt);
    EXPECT_EQ(VolumeRules::isInternal(diskMount(diskAt("/devices/platform/host3/session1/target3:0:0/block/sdd"))),
              std::nullopt);
    EXPECT_EQ(VolumeRules::isInternal(diskMount(
                  diskAt("/devices/pci0000:00/0000:00:03.0/host1/rport-1:0-1/target1:0:0/1:0:0:0/block/sde"))),
              std::nullopt);
    EXPECT_EQ(VolumeRules::isInternal(diskMount(DiskFacts{})), std::nullopt);
}

TEST(VolumeRules, CallAVolumeAcrossDisksExternalWhenOneOfThemIs) {
    MountFacts mount = diskMount(sataDisk);
    mount.disks = {sataDisk, sataDisk};
    EXPECT_EQ(VolumeRules::isInternal(mount), true);
    mount.disks = {sataDisk, usbDisk};
    EXPECT_EQ(VolumeRules::isInternal(mount), false);
    mount.disks = {sataDisk, DiskFacts{}};
    EXPECT_EQ(VolumeRules::isInternal(mount), std::nullopt);
}

TEST(VolumeRules, CallImagesMemoryAndServersExternal) {
    MountFacts image = mountOf("/mnt/image", "ext4");
    image.isLoopDevice = true;
    image.disks = {diskAt("/devices/virtual/block/loop0")};
    EXPECT_EQ(VolumeRules::isInternal(image), false);
    for (const char* fileSystem : {"tmpfs", "nfs", "nfs4", "cifs", "smb3", "fuse.sshfs", "9p", "virtiofs"})
        EXPECT_EQ(VolumeRules::isInternal(mountOf("/mnt/drive", fileSystem)), false) << fileSystem;
}

TEST(VolumeRules, CallTheRootInternalWhateverItStandsOn) {
    MountFacts root = diskMount(usbDisk);
    root.mountPath = "/";
    EXPECT_EQ(VolumeRules::isInternal(root), true);
    EXPECT_EQ(VolumeRules::isInternal(mountOf("/", "overlay")), true);
}

TEST(VolumeRules, KnowWhatMayNotAnswer) {
    for (const char* fileSystem : {"nfs", "nfs4", "cifs", "9p", "fuse.sshfs", "fuse.anything", "fuseblk", "virtiofs"})
        EXPECT_TRUE(VolumeRules::mayNotAnswer(mountOf("/mnt/drive", fileSystem))) << fileSystem;
    for (const char* fileSystem : {"ext4", "tmpfs", "exfat", "btrfs"})
        EXPECT_FALSE(VolumeRules::mayNotAnswer(mountOf("/mnt/drive", fileSystem))) << fileSystem;
}

TEST(VolumeRules, DescribeFormatsInWords) {
    const std::pair<const char*, const char*> words[] = {
        {"ext4", "ext4"}, {"exfat", "exFAT"},      {"vfat", "FAT32"},       {"ntfs3", "NTFS"},     {"btrfs", "Btrfs"},
        {"xfs", "XFS"},   {"tmpfs", "Memory"},     {"nfs4", "NFS"},         {"cifs", "SMB"},       {"hfsplus", "HFS+"},
        {"apfs", "APFS"}, {"fuse.sshfs", "SSHFS"}, {"fuseblk", "fuseblk"},  {"fuse.rare", "rare"}, {"rare", "rare"},
        {"udf", "UDF"},   {"iso9660", "ISO 9660"}, {"fuse.ntfs-3g", "NTFS"}};
    for (const auto& [fileSystem, word] : words)
        EXPECT_EQ(VolumeRules::formatDescription(mountOf("/mnt/drive", fileSystem)), word);
}

TEST(VolumeRules, DescribeTheFormatBehindADriver) {
    MountFacts mount = mountOf("/mnt/drive", "fuseblk");
    mount.contentType = "ntfs";
    EXPECT_EQ(VolumeRules::formatDescription(mount), "NTFS");
    mount.contentType = "exfat";
    EXPECT_EQ(VolumeRules::formatDescription(mount), "exFAT");
}

/// A table of mounts with the numbers that the system gives them.
class MountTable {
public:
    /// `device` tells file systems apart; `parent` is the mount path of the mount that this one stands on.
    MountTable& add(const fs::path& mountPath, std::uint64_t device, const fs::path& parent,
                    const fs::path& root = "/") {
        MountFacts mount = mountOf(mountPath, "ext4");
        mount.id = static_cast<int>(m_mounts.size()) + 20;
        mount.device = device;
        mount.root = root;
        for (const MountFacts& other : m_mounts)
            if (other.mountPath == parent) mount.parentId = other.id;
        m_mounts.push_back(mount);
        return *this;
    }
    std::vector<std::string> listed() const {
        std::vector<std::string> paths;
        for (const MountFacts& mount : VolumeRules::listed(m_mounts, home)) paths.push_back(mount.mountPath.native());
        return paths;
    }
    std::vector<MountFacts>& mounts() { return m_mounts; }

private:
    std::vector<MountFacts> m_mounts;
};

TEST(VolumeRules, ListEachFileSystemOnce) {
    MountTable table;
    table.add("/", 1, "").add("/mnt/bound", 1, "/", "/srv").add("/data", 2, "/").add("/media/anna/Data", 2, "/");
    EXPECT_THAT(table.listed(), ElementsAre("/", "/media/anna/Data"));
}

TEST(VolumeRules, PreferTheWholeFileSystemToAPartOfIt) {
    MountTable table;
    table.add("/", 1, "").add("/mnt/part", 2, "/", "/folder").add("/data/whole", 2, "/");
    EXPECT_THAT(table.listed(), ElementsAre("/", "/data/whole"));
}

TEST(VolumeRules, PreferTheShorterOfTwoPlacesAlike) {
    MountTable table;
    table.add("/", 1, "").add("/mnt/longer", 2, "/").add("/mnt/disk", 2, "/");
    EXPECT_THAT(table.listed(), ElementsAre("/", "/mnt/disk"));
}

TEST(VolumeRules, ListAPartWhenNothingElseOfTheFileSystemIsToSee) {
    MountTable table;
    table.add("/", 1, "").add("/var/lib/data", 2, "/").add("/mnt/part", 2, "/", "/folder");
    EXPECT_THAT(table.listed(), ElementsAre("/", "/mnt/part"));
}

TEST(VolumeRules, LeaveOutWhatALaterMountCovers) {
    MountTable table;
    table.add("/", 1, "").add("/mnt/disk", 2, "/").add("/mnt/disk", 3, "/mnt/disk");
    const auto mounts = VolumeRules::listed(table.mounts(), home);
    ASSERT_EQ(mounts.size(), 2U);
    EXPECT_EQ(mounts[1].device, 3U);

    MountTable above;
    above.add("/", 1, "").add("/mnt/a/disk", 2, "/").add("/mnt/a", 3, "/");
    EXPECT_THAT(above.listed(), ElementsAre("/", "/mnt/a"));
}

TEST(VolumeRules, ListMountsWithinMounts) {
    MountTable table;
    table.add("/", 1, "").add("/mnt/a", 2, "/").add("/mnt/a/inner", 3, "/mnt/a");
    EXPECT_THAT(table.listed(), ElementsAre("/", "/mnt/a", "/mnt/a/inner"));
}

TEST(VolumeRules, ReadATableWhoseParentsComeLast) {
    MountTable table;
    table.add("/mnt/disk", 2, "").add("/", 1, "");
    table.mounts()[0].parentId = table.mounts()[1].id;
    EXPECT_THAT(table.listed(), ElementsAre("/mnt/disk", "/"));
}

TEST(VolumeRules, SurviveATableThatRunsInACircle) {
    MountTable table;
    table.add("/mnt/a", 1, "").add("/mnt/b", 2, "/mnt/a");
    table.mounts()[0].parentId = table.mounts()[1].id;
    EXPECT_THAT(table.listed(), ElementsAre("/mnt/a", "/mnt/b"));
}

}  // namespace
}  // namespace tarvik
