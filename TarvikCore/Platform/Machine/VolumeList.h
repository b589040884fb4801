#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Volume.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace tarvik {

/// The volumes of a machine. Safe to call from any thread; calls block while the system answers, and never throw.
class VolumeList {
public:
    virtual ~VolumeList() = default;

    /// The mounted volumes without hidden ones, in no promised order. A volume that cannot be read is left out.
    virtual std::vector<Volume> mounted() const = 0;

    /// Where volumes are mounted, told without asking any of them where the system allows that: one that does not
    /// answer is among them.
    virtual std::vector<fs::path> mountPaths() const {
        std::vector<fs::path> paths;
        for (Volume& volume : mounted()) paths.push_back(std::move(volume.mountPath));
        return paths;
    }

    /// The volume that is mounted at exactly this path; nothing when none is, or it cannot be read. No other one is
    /// asked where the system allows that.
    virtual std::optional<Volume> at(const fs::path& mountPath) const {
        for (Volume& volume : mounted())
            if (volume.mountPath == mountPath) return std::move(volume);
        return std::nullopt;
    }

    /// What may still be written, in bytes, on the volume that holds `path`; nothing when that cannot be told.
    virtual std::optional<std::int64_t> availableBytes(const fs::path& path) const = 0;
};

/// The volumes that this system has mounted. `home` is the user's: a volume mounted below it counts as the user's own.
std::shared_ptr<const VolumeList> makeSystemVolumeList(const fs::path& home);

/// The folders directly under `root`/Volumes, each external and writable if its file system is, with the capacity that
/// its file system reports, named as the folder is.
std::shared_ptr<const VolumeList> makeRootedVolumeList(const fs::path& root);

}  // namespace tarvik
