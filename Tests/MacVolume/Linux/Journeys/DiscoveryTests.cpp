// The scans see the same machine, whatever its disk makes of names.
#include "Discovery/AppScanner.h"
#include "Discovery/ExternalAppsRootsDiscovery.h"
#include "Discovery/InstalledAppsScanner.h"
#include "Discovery/SymlinkScanner.h"
#include "Launchers/LauncherInventory.h"
#include "MacMachine.h"
#include "Platform/Machine/VolumeList.h"
#include "Platform/Storage/DriveScanner.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <future>
#include <set>
#include <string>
#include <vector>

namespace tarvik::test {

namespace {

using Habit = MacVolume::Habit;
using testing::HasSubstr;
using namespace std::chrono_literals;

/// Everything that the scans tell of a machine.
struct Seen {
    explicit Seen(const Host& host)
        : entries(AppScanner::discoverMetadata(host)),
          records(InstalledAppsScanner::discover(host)),
          links(SymlinkScanner::scan(host, SymlinkScanner::defaultRoots(host))),
          launchers(LauncherInventory::list(host)),
          appsRoots(ExternalAppsRootsDiscovery::roots(host, {})) {
        for (AppEntry& entry : entries) entry = AppScanner::computeSizes(host, entry);
    }

    std::vector<AppEntry> entries;
    std::vector<AppRecord> records;
    std::vector<SymlinkEntry> links;
    std::vector<LauncherEntry> launchers;
    std::vector<fs::path> appsRoots;
};

class Scans : public WithMacApplications {};

}  // namespace

TEST(ScansOfAFoldingDisk, SeeWhatTheySeeOnAnother) {
    TARVIK_NEEDS_MAC_VOLUMES();
    const TemporaryFolder folder;
    const auto machine = Practice::build(folder / "machine", {.apps = 1, .files = 8});
    const Host host = Host::rootedAt(machine.root, machine.home);
    const Seen plain(host);
    const MacVolume disk(machine.root, {Habit::foldsNames, Habit::decomposesNames});
    const Seen folded(host);
    EXPECT_EQ(folded.entries, plain.entries);
    EXPECT_EQ(folded.records, plain.records);
    EXPECT_EQ(folded.links, plain.links);
    EXPECT_EQ(folded.launchers, plain.launchers);
    EXPECT_EQ(folded.appsRoots, plain.appsRoots);
}

TEST_F(Scans, ListEachItemOnce) {
    makeBundle(mac->at("Applications/Caf\u00E9.app"), {{"CFBundleIdentifier", "org.example.CAFE"}});
    makeFile(mac->atHome("Library/Caches/CAFE\u0301/data"));
    makeFile(mac->atHome("Library/Caches/org.example.cafe/data"));
    makeFile(mac->atHome(".CAF\u00C9/data"));
    const auto entry = AppScanner::metadataEntry(mac->host, mac->at("Applications/Caf\u00E9.app")).value();
    EXPECT_THAT(entry.dataPaths, testing::SizeIs(testing::Ge(3U)));
    std::set<std::uint64_t> items;
    for (const fs::path& path : entry.dataPaths) items.insert(Files::info(path)->inode);
    EXPECT_EQ(items.size(), entry.dataPaths.size()) << testing::PrintToString(entry.dataPaths);
}

TEST_F(Scans, YieldWhatTheyCanWherePrivacyKeepsTheRest) {
    const auto before = AppScanner::discoverMetadata(mac->host);
    for (const auto* name : {"Library/Containers", "Library/Group Containers", "Documents", "Downloads"})
        keepPrivate(mac->atHome(name));
    const auto after = AppScanner::discoverMetadata(mac->host);
    EXPECT_EQ(after.size(), before.size());
    EXPECT_FALSE(SymlinkScanner::scan(mac->host, SymlinkScanner::defaultRoots(mac->host)).empty());
    const auto apps = mac->run({"apps", "--format", "tsv"});
    EXPECT_EQ(apps.status, 0);
    EXPECT_THAT(apps.output, HasSubstr("Full House"));
}

TEST_F(Scans, KnowDrivesByTheirNames) {
    std::vector<std::string> names;
    for (const DriveInfo& drive : DriveScanner::scan(mac->host)) names.push_back(drive.name);
    EXPECT_THAT(names, testing::ElementsAre("Backup", "Card", "Extended", "Studio Drive"));
}

TEST(ScansOfTheSystemsVolumes, WaitForNoneThatHangs) {
    TARVIK_NEEDS_MAC_VOLUMES();
    const TemporaryFolder home;
    makeFolder(home / "Drive");
    MacVolume drive(home / "Drive");
    const auto volumes = makeSystemVolumeList(home.path());
    const auto isListed = [&] {
        const auto list = volumes->mounted();
        return std::any_of(list.begin(), list.end(),
                           [&](const Volume& volume) { return volume.mountPath == drive.path(); });
    };
    EXPECT_TRUE(isListed());
    drive.set(Habit::hangs, true);
    auto answer = std::async(std::launch::async, isListed);
    const bool hasCome = answer.wait_for(20s) == std::future_status::ready;
    drive.set(Habit::hangs, false);
    EXPECT_TRUE(hasCome);
    EXPECT_FALSE(answer.get());
    EXPECT_TRUE(isListed());
}

}  // namespace tarvik::test
