// An application and its data on their way to a real second volume and back, as everyone who looks sees them.
#include "Discovery/AppScanner.h"
#include "Discovery/ApplicationsRootScan.h"
#include "Discovery/ExternalAppsRootsDiscovery.h"
#include "Discovery/InstalledAppsScanner.h"
#include "Discovery/SymlinkScanner.h"
#include "Move/MoverEngine.h"
#include "MovePlan/MovePlanner.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Bundles/RunningBundle.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Storage/DriveScanner.h"
#include "Practice/PracticeMachine.h"
#include "Records/HealthManifest.h"
#include "Records/InstallsDB.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/TrackingDatabase.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tarvik {
namespace {

using test::RealVolume;
using testing::Contains;
using testing::Each;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

/// A practice machine with one more drive, which is a real file system, and the application "Full House", which has
/// data at every place.
class ApplicationJourney : public testing::Test {
protected:
    void SetUp() override {
        TARVIK_NEEDS_REAL_VOLUMES();
        volume.emplace(RealVolume::ext4(machine.root / "Volumes", 64'000'000));
    }

    /// What the Apps tab lists for the application.
    AppEntry entry() const {
        for (AppEntry& found : AppScanner::discoverMetadata(host))
            if (found.bundlePath == app) return AppScanner::computeSizes(host, found);
        throw std::runtime_error("the Apps tab lacks the application");
    }
    /// What the uninstaller lists: one record, however many places the application is found at.
    AppRecord record() const {
        std::vector<AppRecord> found = InstalledAppsScanner::discover(host);
        std::erase_if(found, [](const AppRecord& each) { return each.bundleIdentifier != identifier; });
        if (found.size() != 1) throw std::runtime_error("the uninstaller does not list the application once");
        return found.front();
    }
    std::map<fs::path, SymlinkEntry> links() const {
        std::map<fs::path, SymlinkEntry> links;
        for (const SymlinkEntry& link : SymlinkScanner::scan(host, SymlinkScanner::defaultRoots(host)))
            links.emplace(link.location, link);
        return links;
    }
    ApplicationsRootScan::Result applications() const {
        return ApplicationsRootScan::scan({SystemFolders::applications(host)});
    }
    std::vector<fs::path> appsRootsOnDrives() const { return ExternalAppsRootsDiscovery::roots(host, {}); }

    DriveInfo drive() const {
        for (const DriveInfo& found : DriveScanner::scan(host))
            if (found.mountPath == volume->path()) return found;
        throw std::runtime_error("the drive is not listed");
    }
    std::vector<MoveJob> plan() const { return MovePlanner::buildAppJobs(host, {entry()}, drive(), true); }

    void move(const fs::path& item, const fs::path& parent, bool quitRunning = false) const {
        MoverEngine::moveAndLink(
            host, item, parent, quitRunning, [](const JobStatus&) {}, [](std::int64_t, std::int64_t) {});
    }

    /// The moved paths that the manifest holds, in the order of their moves.
    std::vector<fs::path> remembered() const {
        std::vector<fs::path> paths;
        for (const HealthManifestEntry& each : HealthManifest::load(host)) paths.push_back(each.sourcePath);
        return paths;
    }
    /// The names of the items that the tracking database holds as moved.
    std::string tracked() const {
        return test::askDatabase(InstallsDB::defaultPath(host),
                                 "SELECT app_name FROM installs WHERE install_type = 'app_move' AND "
                                 "uninstalled_at IS NULL ORDER BY rowid");
    }

    static constexpr const char* identifier = "org.example.fullhouse";

    test::TemporaryFolder folder;
    Practice::Machine machine = Practice::build(folder / "machine", {.apps = 2, .files = 20});
    Host host = Host::rootedAt(machine.root, machine.home);
    fs::path app = SystemFolders::applications(host) / "Full House.app";
    std::optional<RealVolume> volume;
};

TEST_F(ApplicationJourney, LeadsToADriveAndBackAndEveryScanFollows) {
    const AppEntry before = entry();
    const AppRecord recordBefore = record();
    const auto linksBefore = links();
    const auto rememberedBefore = remembered();
    const std::string trackedBefore = tracked();
    EXPECT_FALSE(before.isAlreadySymlinked);
    EXPECT_EQ(recordBefore.bundlePath, app);
    EXPECT_EQ(recordBefore.kind, AppRecordKind::normal);
    EXPECT_THAT(applications().realAppNames, Contains("Full House.app"));
    EXPECT_THAT(appsRootsOnDrives(), Not(Contains(*volume / "ExternalTarvik/Apps")));

    const std::vector<MoveJob> jobs = plan();
    // The preferences in both Libraries stay, everything else goes.
    ASSERT_THAT(jobs, SizeIs(1 + before.dataPaths.size() - 2));
    std::map<fs::path, std::string> pictures;
    auto nowRemembered = rememberedBefore;
    std::string nowTracked = trackedBefore;
    for (const MoveJob& job : jobs) {
        pictures[job.source] = test::pictureOf(job.source);
        move(job.source, job.destination.parent_path());
        EXPECT_EQ(Files::linkText(job.source), job.destination);
        EXPECT_EQ(test::pictureOf(job.destination), pictures[job.source]);
        nowRemembered.push_back(job.source);
        nowTracked += job.source.filename().native() + "\n";
        EXPECT_EQ(remembered(), nowRemembered);
        EXPECT_EQ(tracked(), nowTracked);
    }

    const fs::path moved = *volume / "ExternalTarvik/Apps/Full House.app";
    AppEntry expected = before;
    expected.isAlreadySymlinked = true;
    AppEntry after = entry();
    // The database's newest record of the application is that of the move now, which tracks no files.
    const fs::path trackedFolder = machine.home / "Documents/Full House Projects";
    ASSERT_EQ(before.dataPaths.front(), trackedFolder);
    EXPECT_THAT(after.dataPaths, Not(Contains(trackedFolder)));
    expected.dataPaths.erase(expected.dataPaths.begin());
    expected.dataPathSizes = after.dataPathSizes;
    EXPECT_EQ(expected.withSizes(after.appSize, after.dataPathSizes), after);
    EXPECT_GT(after.appSize, 0);
    EXPECT_THAT(plan(), IsEmpty());

    const AppRecord recordAfter = record();
    EXPECT_EQ(recordAfter.bundlePath, moved);
    EXPECT_EQ(recordAfter.kind, AppRecordKind::externalTarget);
    EXPECT_EQ(recordAfter.displayName, recordBefore.displayName);

    const auto linksAfter = links();
    for (const MoveJob& job : jobs) {
        const fs::path parent = job.source.parent_path();
        const auto roots = SymlinkScanner::defaultRoots(host);
        const bool isListed = std::find(roots.begin(), roots.end(), parent) != roots.end() &&
                              !job.source.filename().native().starts_with('.');
        ASSERT_EQ(linksAfter.contains(job.source), isListed) << job.source;
        if (!isListed) continue;
        EXPECT_EQ(linksAfter.at(job.source).target, job.destination);
        EXPECT_TRUE(linksAfter.at(job.source).isValid);
        EXPECT_GT(linksAfter.at(job.source).targetSize, 0);
    }
    EXPECT_EQ(linksAfter.size(), linksBefore.size() + 2) << "the bundle and its Application Support folder";
    EXPECT_THAT(applications().realAppNames, Not(Contains("Full House.app")));
    EXPECT_THAT(applications().symlinks, Contains(ApplicationsRootScan::Link{app, moved}));
    EXPECT_THAT(appsRootsOnDrives(), Contains(*volume / "ExternalTarvik/Apps"));

    for (const MoveJob& job : jobs) {
        MoverEngine::restore(host, job.source);
        EXPECT_FALSE(Files::isSymbolicLink(job.source));
        EXPECT_EQ(test::pictureOf(job.source), pictures[job.source]);
        EXPECT_FALSE(Files::itemExists(job.destination));
        std::erase(nowRemembered, job.source);
        EXPECT_EQ(remembered(), nowRemembered);
    }
    EXPECT_EQ(tracked(), trackedBefore);
    EXPECT_EQ(entry(), before);
    EXPECT_EQ(record(), recordBefore);
    EXPECT_EQ(links(), linksBefore);
    EXPECT_THAT(applications().realAppNames, Contains("Full House.app"));
}

TEST_F(ApplicationJourney, BeginsOnlyWhenNothingRunsFromTheBundle) {
    ChildProcess program = test::runSleeperIn(app);
    const MoveJob job = plan().front();
    const std::string picture = test::pictureOf(app);
    const auto rememberedBefore = remembered();
    try {
        move(job.source, job.destination.parent_path());
        FAIL() << "moved";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.description(), "App is running: Full House.app. Quit it first, or pass --quit-running.");
    }
    EXPECT_EQ(program.poll(), std::nullopt) << "it was not asked to quit";
    EXPECT_EQ(test::pictureOf(app), picture);
    EXPECT_FALSE(Files::itemExists(job.destination));
    EXPECT_EQ(remembered(), rememberedBefore);

    move(job.source, job.destination.parent_path(), true);
    EXPECT_EQ(program.wait(), SIGTERM);
    EXPECT_EQ(Files::linkText(app), job.destination);
    EXPECT_EQ(test::pictureOf(job.destination), picture);
    EXPECT_THAT(remembered(), Contains(app));
}

}  // namespace
}  // namespace tarvik
