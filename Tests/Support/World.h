#pragma once

#include "Platform/DriveInfo.h"
#include "Platform/Host.h"
#include "Platform/TrashCan.h"
#include "Platform/VolumeList.h"
#include "Support/TemporaryFolder.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tarvik::test {

/// Volumes as a test wants them.
class MadeVolumes : public VolumeList {
public:
    std::vector<Volume> mounted() const override { return list; }
    std::optional<std::int64_t> availableBytes(const fs::path&) const override { return available; }

    std::vector<Volume> list;
    std::optional<std::int64_t> available;
};

/// A Trash in a folder, which can be told to refuse.
class MadeTrash : public TrashCan {
public:
    explicit MadeTrash(fs::path trashFolder) : folder(std::move(trashFolder)) {}
    fs::path moveToTrash(const fs::path& item) const override;

    fs::path folder;
    bool refuses = false;
};

/// A small machine in a temporary folder: a home, one drive (a plain folder), a Trash, a clock that stands still, and a
/// copy tool that is a shell script.
class World {
public:
    World();
    /// With the drive at `drivePath`, a real volume for instance.
    explicit World(const fs::path& drivePath);

    /// The same machine with the program of this build as its copy tool.
    World& withRealDitto();
    /// Replaces the copy tool by a shell script; its arguments are --rsrc, the source and the destination.
    World& withDitto(const std::string& script);

    DriveInfo driveInfo() const;
    fs::path foldersOnDrive() const;

    TemporaryFolder folder;
    fs::path home;
    fs::path drive;
    std::shared_ptr<MadeVolumes> volumes;
    std::shared_ptr<MadeTrash> trash;
    Host host;
};

/// The program `name` of this build, such as "stand-ins/ditto".
fs::path programOfThisBuild(const std::string& name);

/// 2026-11-15 17:45:43 UTC, the time of a made world's clock, in seconds since 1970.
inline constexpr std::int64_t madeNow = 1794764743;

}  // namespace tarvik::test
