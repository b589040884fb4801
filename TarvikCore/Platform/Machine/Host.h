#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/ToolTable.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace tarvik {

class FileEvents;
class RunningApplications;
class SleepBlocker;
class TrashCan;
class VolumeList;

using Clock = std::function<std::chrono::system_clock::time_point()>;

/// The machine that the services work on. Immutable once made; safe to share between threads.
///
/// Everything that differs between a real Mac, a Linux machine, the practice machine and a test is in here, and every
/// service that touches the machine takes it first.
struct Host {
    /// "/" on a real machine: what /Applications, /Library and /Volumes stand under.
    fs::path root;
    /// The user's home folder, a real path (the root is part of it).
    fs::path home;
    /// Where short-lived files go. It need not exist yet: whoever writes there first makes it.
    fs::path temporary;
    ToolTable tools;
    std::shared_ptr<const VolumeList> volumes;
    /// Where volumes are mounted that are known to answer no call; see `SilentVolumes`.
    std::vector<fs::path> silentVolumes;
    std::shared_ptr<const TrashCan> trash;
    std::shared_ptr<const RunningApplications> runningApplications;
    /// Null for a machine that does not sleep; see `KeptAwake`.
    std::shared_ptr<const SleepBlocker> sleepBlocker;
    /// Null for a machine on which nobody is told of what happens to files.
    std::shared_ptr<const FileEvents> fileEvents;
    Clock now;

    /// The machine that this program runs on, with the user's home folder, or another one. Without one, HOME names it,
    /// or else the user's account.
    static Host thisMachine(const std::optional<fs::path>& home = std::nullopt);
    /// Another disk, or the practice machine: nothing outside `root` and `home` belongs to it. Its temporary folder is
    /// `root`/tmp, so that what is unpacked there stays on the same disk. Both are real paths; nothing is made.
    static Host rootedAt(const fs::path& root, const fs::path& home);
    /// What a program's --root and --home name: without a root (or with "/") this machine; with one, `home` defaults to
    /// the only folder under its `Users`, where `Shared` and hidden ones do not count. Links in both are resolved.
    /// @throws Failure when `root` or the home is no folder or the home cannot be told.
    static Host fromOptions(const std::optional<fs::path>& root, const std::optional<fs::path>& home);

    /// Makes every tool that this program starts from now on work on this machine too. A program calls it once, while
    /// it has only one thread.
    void guideTools() const;
};

}  // namespace tarvik
