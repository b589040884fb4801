#include "MacMachine.h"

#include "Discovery/AppScanner.h"
#include "MovePlan/AppMove.h"
#include "MovePlan/FolderMove.h"
#include "MovePlan/MoveRun.h"
#include "MovePlan/WayBack.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/TreeWalk.h"
#include "Platform/Machine/VolumeList.h"
#include "Platform/Storage/DriveScanner.h"
#include "Support/Tree.h"

#include <fmt/format.h>

#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <stdexcept>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <system_error>

namespace tarvik::test {

namespace {

using Habit = MacVolume::Habit;

/// What a new drive is behind what it shows.
fs::path newFolder(const fs::path& folder) {
    makeFolder(folder);
    return folder;
}

/// The machine's volumes with their formats, which a machine in a folder does not tell.
class FormattedVolumes final : public VolumeList {
public:
    explicit FormattedVolumes(std::shared_ptr<const VolumeList> volumes) : m_volumes(std::move(volumes)) {}

    std::vector<Volume> mounted() const override {
        auto volumes = m_volumes->mounted();
        for (Volume& volume : volumes) {
            char format[16];
            const ssize_t length = ::getxattr(volume.mountPath.c_str(), MacAttribute::format, format, sizeof format);
            if (length > 0) volume.formatDescription = std::string(format, static_cast<std::size_t>(length));
        }
        return volumes;
    }
    std::optional<std::int64_t> availableBytes(const fs::path& path) const override {
        return m_volumes->availableBytes(path);
    }

private:
    std::shared_ptr<const VolumeList> m_volumes;
};

/// Runs the jobs. @returns the failures, a line each; "moved" without any.
std::string outcomeOf(const MacMachine& machine, const std::vector<MoveJob>& jobs, const DriveInfo& drive) {
    std::string failures;
    const auto status = [&](std::size_t, const JobStatus& reached) {
        EXPECT_EQ(machine.sleepBlocker->holds, 1) << "the machine may fall asleep";
        const auto* failed = reached.get<JobStatus::Failed>();
        if (failed) failures += (failures.empty() ? "" : "\n") + failed->description;
    };
    MoveRun::run(machine.host, jobs, drive.mountPath, false, status, {});
    EXPECT_EQ(machine.sleepBlocker->holds, 0) << "the machine is kept awake for ever";
    return failures.empty() ? "moved" : failures;
}

}  // namespace

MacMachine::MacMachine(const Practice::Options& options)
    : machine(Practice::build(folder / "machine", options)),
      disk(machine.root, {Habit::foldsNames, Habit::decomposesNames}),
      extended(newFolder(folder / "extended"), at("Volumes/Extended"),
               {Habit::foldsNames, Habit::decomposesNames, Habit::exchangesNoNames}),
      exFat(newFolder(folder / "exfat"), at("Volumes/Card"),
            {Habit::foldsNames, Habit::isExFat, Habit::tellsOneCapacity}),
      sleepBlocker(std::make_shared<MadeSleepBlocker>()),
      host(Host::rootedAt(machine.root, machine.home)) {
    host.volumes = std::make_shared<FormattedVolumes>(host.volumes);
    host.sleepBlocker = sleepBlocker;
    setMacFlags(at("Applications"), MacFlag::noUnlink);
}

DriveInfo MacMachine::driveInfo(const MacVolume& drive) const {
    for (const DriveInfo& found : DriveScanner::scan(host))
        if (found.mountPath == drive.path()) return found;
    throw std::runtime_error("the drive is not listed");
}

void MacMachine::letDiskTellNamesApart() {
    disk.set(Habit::foldsNames, false);
    disk.set(Habit::decomposesNames, false);
}

std::string MacMachine::moveFolder(const fs::path& source, const MacVolume& drive) const {
    try {
        const DriveInfo target = driveInfo(drive);
        return outcomeOf(*this, {FolderMove::plan(host, source, target)}, target);
    } catch (const Failure& failure) {
        return failure.description();
    }
}

std::string MacMachine::moveApp(const fs::path& bundle, const MacVolume& drive) const {
    try {
        const DriveInfo target = driveInfo(drive);
        const auto entry = AppScanner::computeSizes(host, AppScanner::metadataEntry(host, bundle).value());
        return outcomeOf(*this, AppMove::propose(host, {entry}, target, true).jobs, target);
    } catch (const Failure& failure) {
        return failure.description();
    }
}

std::string MacMachine::moveBack(const fs::path& link) const {
    try {
        bool isAwake = false;  // The end of a copy is told in any case.
        WayBack::run(host, WayBack::plan(host, link),
                     [&](std::int64_t, std::int64_t) { isAwake = sleepBlocker->holds == 1; });
        EXPECT_TRUE(isAwake && sleepBlocker->holds == 0);
        return "back";
    } catch (const Failure& failure) {
        return failure.description();
    }
}

Finished MacMachine::run(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"--root", machine.root.native()});
    return runProgram(programOfThisBuild("mac-volume-tarvik"), arguments);
}

void makeOld(const fs::path& root) {
    constexpr timespec then{.tv_sec = 1'000'000'000, .tv_nsec = 0};
    const timespec times[] = {then, then};
    TreeWalk walk(root, {.givesLeave = true});
    while (walk.next())
        if (::utimensat(walk.folderHandle(), walk.name(), times, AT_SYMLINK_NOFOLLOW) != 0)
            throw std::system_error(errno, std::generic_category(), walk.relativePath());
    if (::utimensat(AT_FDCWD, root.c_str(), times, 0) != 0) throw std::system_error(errno, std::generic_category());
}

bool leadsTo(const fs::path& link, const fs::path& item) {
    return Files::isSymbolicLink(link) && Files::isSameItem(Files::infoFollowingLinks(link), Files::info(item));
}

std::string contentsOf(const fs::path& root) {
    std::string contents;
    TreeWalk walk(root, {});
    while (walk.next()) {
        contents += walk.relativePath();
        if (walk.type() == Files::ItemType::regular)
            contents += fmt::format(": {:x}", std::hash<std::string>()(contentOf(root / walk.relativePath())));
        contents += '\n';
    }
    return contents;
}

}  // namespace tarvik::test
