#include "Platform/Files/FileSystemStatus.h"
#include "Platform/Files/PatientStatus.h"
#include "Platform/Linux/BlockDevice.h"
#include "Platform/Linux/VolumeRules.h"
#include "Platform/Machine/VolumeList.h"

#include <libmount/libmount.h>

#include <chrono>
#include <sys/stat.h>
#include <utility>

namespace tarvik {

namespace {

// How long a list may wait for a network volume whose server has gone. The volume is then left out.
constexpr std::chrono::milliseconds patience{2000};

struct Release {
    void operator()(libmnt_table* table) const { mnt_unref_table(table); }
    void operator()(libmnt_iter* iterator) const { mnt_free_iter(iterator); }
    void operator()(libmnt_cache* cache) const { mnt_unref_cache(cache); }
};

std::string textOf(const char* text) {
    return text ? text : std::string{};
}

/// The number of the block device below a mount. The mount table gives file systems that span devices a number of their
/// own; their source names a device.
std::uint64_t blockDeviceOf(const MountFacts& mount) {
    struct stat status {};
    if (mount.source.starts_with("/dev/") && ::stat(mount.source.c_str(), &status) == 0 && S_ISBLK(status.st_mode))
        return status.st_rdev;
    return mount.device;
}

/// What the mount table tells, without what only the device can.
std::vector<MountFacts> readTable() {
    const std::unique_ptr<libmnt_table, Release> table(mnt_new_table());
    const std::unique_ptr<libmnt_iter, Release> iterator(mnt_new_iter(MNT_ITER_FORWARD));
    if (!table || !iterator || mnt_table_parse_mtab(table.get(), nullptr) != 0) return {};

    std::vector<MountFacts> mounts;
    libmnt_fs* entry = nullptr;
    while (mnt_table_next_fs(table.get(), iterator.get(), &entry) == 0) {
        MountFacts mount;
        mount.id = mnt_fs_get_id(entry);
        mount.parentId = mnt_fs_get_parent_id(entry);
        mount.mountPath = textOf(mnt_fs_get_target(entry));
        mount.root = textOf(mnt_fs_get_root(entry));
        mount.fileSystem = textOf(mnt_fs_get_fstype(entry));
        mount.source = textOf(mnt_fs_get_source(entry));
        mount.options = textOf(mnt_fs_get_options(entry)) + "," + textOf(mnt_fs_get_user_options(entry));
        mount.device = mnt_fs_get_devno(entry);
        mounts.push_back(std::move(mount));
    }
    return mounts;
}

/// The label as it stands on the device, where the user may read that: for a system without a device database.
std::optional<std::string> labelOnDevice(const std::string& source) {
    const std::unique_ptr<libmnt_cache, Release> cache(mnt_new_cache());
    if (!cache || !source.starts_with("/dev/")) return std::nullopt;
    const char* label = mnt_cache_find_tag_value(cache.get(), source.c_str(), "LABEL");
    return label ? std::optional<std::string>(label) : std::nullopt;
}

Volume volumeOf(MountFacts mount, const FileSystemStatus& status) {
    BlockDevice::Facts device = BlockDevice::read(blockDeviceOf(mount));
    mount.contentType = std::move(device.contentType);
    mount.isLoopDevice = device.isLoopDevice;
    mount.disks = std::move(device.disks);
    return {.mountPath = mount.mountPath,
            .name = device.label ? device.label : labelOnDevice(mount.source),
            .totalBytes = status.totalBytes,
            .availableBytes = status.availableBytes,
            .isInternal = VolumeRules::isInternal(mount),
            .isBrowsable = true,
            .isReadOnly = status.isReadOnly,
            .formatDescription = VolumeRules::formatDescription(mount),
            .identifier = std::move(device.identifier)};
}

bool isFolder(const fs::path& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// The status of each mount. Volumes on this machine's own disks are asked directly, others with patience.
std::vector<std::optional<FileSystemStatus>> statusOf(const std::vector<MountFacts>& mounts) {
    std::vector<fs::path> slowPaths;
    for (const MountFacts& mount : mounts)
        if (VolumeRules::mayNotAnswer(mount)) slowPaths.push_back(mount.mountPath);
    const auto slow = PatientStatus::read(slowPaths, patience);

    std::vector<std::optional<FileSystemStatus>> result;
    auto nextSlow = slow.begin();
    for (const MountFacts& mount : mounts) {
        if (VolumeRules::mayNotAnswer(mount))
            result.push_back(*nextSlow++);
        else
            result.push_back(isFolder(mount.mountPath) ? fileSystemStatus(mount.mountPath) : std::nullopt);
    }
    return result;
}

std::vector<Volume> volumesOf(const std::vector<MountFacts>& mounts) {
    const auto statuses = statusOf(mounts);
    std::vector<Volume> volumes;
    for (std::size_t index = 0; index < mounts.size(); ++index)
        if (statuses[index]) volumes.push_back(volumeOf(mounts[index], *statuses[index]));
    return volumes;
}

class LinuxVolumeList final : public VolumeList {
public:
    explicit LinuxVolumeList(fs::path home) : m_home(std::move(home)) {}

    std::vector<Volume> mounted() const override { return volumesOf(VolumeRules::listed(readTable(), m_home)); }

    std::optional<Volume> at(const fs::path& mountPath) const override {
        std::vector<MountFacts> mounts = VolumeRules::listed(readTable(), m_home);
        std::erase_if(mounts, [&](const MountFacts& mount) { return mount.mountPath != mountPath; });
        auto volumes = volumesOf(mounts);
        return volumes.empty() ? std::nullopt : std::optional(std::move(volumes.front()));
    }

    std::vector<fs::path> mountPaths() const override {
        std::vector<fs::path> paths;
        for (MountFacts& mount : VolumeRules::listed(readTable(), m_home)) paths.push_back(std::move(mount.mountPath));
        return paths;
    }

    std::optional<std::int64_t> availableBytes(const fs::path& path) const override {
        const auto status = fileSystemStatus(path);
        return status ? status->availableBytes : std::nullopt;
    }

private:
    const fs::path m_home;
};

}  // namespace

std::shared_ptr<const VolumeList> makeSystemVolumeList(const fs::path& home) {
    return std::make_shared<LinuxVolumeList>(home);
}

}  // namespace tarvik
