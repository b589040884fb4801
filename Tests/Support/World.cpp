#include "Support/World.h"

#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/ToolTable.h"
#include "Platform/Processes/ProgramLocation.h"
#include "Support/ShellScript.h"
#include "Support/Tree.h"

#include <cerrno>
#include <chrono>

namespace tarvik::test {

fs::path MadeTrash::moveToTrash(const fs::path& item) const {
    if (refuses) throw FileError("move to the Trash", item, EPERM);
    if (!Files::itemExists(item)) throw FileError("move to the Trash", item, ENOENT);
    fs::create_directories(folder);
    const fs::path goal = folder / item.filename();
    fs::rename(item, goal);
    return goal;
}

std::unique_ptr<SleepBlocker::Hold> MadeSleepBlocker::hold(const std::string& reason) const {
    class MadeHold : public Hold {
    public:
        explicit MadeHold(std::atomic<int>& holds) : m_holds(holds) { ++m_holds; }
        ~MadeHold() override { --m_holds; }

    private:
        std::atomic<int>& m_holds;
    };
    const std::lock_guard lock(mutex);
    reasons.push_back(reason);
    return std::make_unique<MadeHold>(holds);
}

World::World() : World(fs::path()) {}

World::World(const fs::path& drivePath)
    : home(folder / "Users/ada"),
      drive(drivePath.empty() ? folder / "Volumes/Backup" : drivePath),
      volumes(std::make_shared<MadeVolumes>()),
      trash(std::make_shared<MadeTrash>(folder / "Trash")),
      applications(std::make_shared<MadeApplications>()),
      sleepBlocker(std::make_shared<MadeSleepBlocker>()) {
    makeFolder(home);
    makeFolder(drive);
    volumes->list.push_back({.mountPath = drive, .name = "Backup", .totalBytes = 0, .availableBytes = 0});
    volumes->available = std::int64_t{1} << 40;
    host.root = folder.path();
    host.home = home;
    host.temporary = folder / "tmp";
    host.tools.find = "/usr/bin/find";
    host.volumes = volumes;
    host.trash = trash;
    host.runningApplications = applications;
    host.sleepBlocker = sleepBlocker;
    host.now = [] { return std::chrono::system_clock::time_point(std::chrono::seconds(madeNow)); };
    withDitto(R"(cp -aT "$2" "$3")");
}

World& World::withRealDitto() {
    host.tools.ditto = systemTools().ditto;
    return *this;
}

World& World::withDitto(const std::string& script) {
    host.tools.ditto = tool("ditto", script);
    return *this;
}

fs::path World::tool(const std::string& name, const std::string& script) {
    const fs::path path = folder / "tools" / name;
    makeFile(path, scriptOf(script));
    fs::permissions(path, fs::perms::owner_all);
    return path;
}

DriveInfo World::driveInfo() const {
    return {.id = drive.native(),
            .name = "Backup",
            .mountPath = drive,
            .totalBytes = std::int64_t{1} << 41,
            .freeBytes = std::int64_t{1} << 40,
            .isInternal = false,
            .isWritable = true,
            .filesystem = std::nullopt};
}

std::vector<std::string> World::namesAtHome() const {
    auto names = Files::names(home);
    std::erase(names, "Library");
    return names;
}

fs::path World::foldersOnDrive() const {
    return AppStorageNames::foldersRootOn(drive);
}

std::string waitFor(const fs::path& path) {
    return "turns=0; until [ -e '" + path.native() +
           "' ]; do turns=$((turns+1)); [ $turns -lt 6000 ] || exit 99; sleep 0.01; done\n";
}

fs::path programOfThisBuild(const std::string& name) {
    return ProgramLocation::folder() / name;
}

}  // namespace tarvik::test
