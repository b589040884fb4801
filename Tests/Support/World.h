#pragma once

#include "Platform/Machine/Host.h"
#include "Platform/Machine/RunningApplications.h"
#include "Platform/Machine/SleepBlocker.h"
#include "Platform/Machine/TrashCan.h"
#include "Platform/Machine/VolumeList.h"
#include "Platform/Storage/DriveInfo.h"
#include "Support/TemporaryFolder.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
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
    std::vector<fs::path> foldersFor(const fs::path&) const override { return {folder}; }

    fs::path folder;
    bool refuses = false;
};

/// Running applications as a test wants them, which notes what it is asked.
class MadeApplications : public RunningApplications {
public:
    std::vector<RunningApplication> running() const override { return list; }
    std::vector<fs::path> bundlesInUse() const override { return inUse; }
    void terminate(const RunningApplication& application) const override {
        terminated.push_back(application);
        if (quitsWhenAsked) list.clear();
    }
    void forceTerminate(const RunningApplication& application) const override { forced.push_back(application); }

    mutable std::vector<RunningApplication> list;
    std::vector<fs::path> inUse;
    /// All of them, at the first request.
    bool quitsWhenAsked = false;
    mutable std::vector<RunningApplication> terminated;
    mutable std::vector<RunningApplication> forced;
};

/// Notes how often the machine was kept awake, and whether it is now.
class MadeSleepBlocker : public SleepBlocker {
public:
    std::unique_ptr<Hold> hold(const std::string& reason) const override;

    mutable std::mutex mutex;
    mutable std::vector<std::string> reasons;
    mutable std::atomic<int> holds = 0;
};

/// A small machine in a temporary folder: a home, one drive (a plain folder), a Trash, a clock that stands still, a
/// copy tool that is a shell script, and no running applications.
class World {
public:
    World();
    /// With the drive at `drivePath`, a real volume for instance.
    explicit World(const fs::path& drivePath);

    /// The same machine with this system's own copy tool, which is a program of this build where the system has none.
    World& withRealDitto();
    /// Replaces the copy tool by a shell script; its arguments are --rsrc, the source and the destination.
    World& withDitto(const std::string& script);
    /// A shell script as the tool `name`. @returns its path.
    fs::path tool(const std::string& name, const std::string& script);

    DriveInfo driveInfo() const;
    fs::path foldersOnDrive() const;
    /// The names in the home, hidden ones too, without the Library, where the program keeps records of its own.
    std::vector<std::string> namesAtHome() const;

    TemporaryFolder folder;
    fs::path home;
    fs::path drive;
    std::shared_ptr<MadeVolumes> volumes;
    std::shared_ptr<MadeTrash> trash;
    std::shared_ptr<MadeApplications> applications;
    std::shared_ptr<MadeSleepBlocker> sleepBlocker;
    Host host;
};

/// A shell line for a copy tool: waits until something stands at `path`, and fails after a minute without it.
std::string waitFor(const fs::path& path);

/// The program `name` of this build, such as "stand-ins/ditto".
fs::path programOfThisBuild(const std::string& name);

/// 2026-11-15 17:45:43 UTC, the time of a made world's clock, in seconds since 1970.
inline constexpr std::int64_t madeNow = 1794764743;

}  // namespace tarvik::test
