#include "Discovery/AppScanner.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/SystemCalls.h"
#include "Practice/PracticeMachine.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sys/stat.h>

namespace tarvik {

namespace {

using test::TemporaryFolder;

/// The time of every item below `root`, to the nanosecond.
std::map<std::string, std::string> timesOf(const fs::path& root) {
    std::map<std::string, std::string> times;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        struct stat status {};
        ::lstat(entry.path().c_str(), &status);
        const timespec changed = SystemCalls::contentChangeTime(status);
        times[entry.path().lexically_relative(root).native()] = fmt::format("{}.{}", changed.tv_sec, changed.tv_nsec);
    }
    return times;
}

std::string sentenceOfBuilding(const fs::path& folder) {
    try {
        Practice::build(folder);
    } catch (const Failure& failure) {
        return failure.description();
    }
    return "built";
}

}  // namespace

TEST(PracticeMachine, IsTheSameForTheSameSeed) {
    const TemporaryFolder folder;
    // At one place, because links and launchers hold absolute paths.
    const fs::path place = folder / "machine";
    Practice::build(place, {.broken = true, .seed = 7});
    const auto picture = test::pictureOf(place);
    const auto times = timesOf(place);
    const auto permissions = fs::status(place).permissions();
    fs::remove_all(place);
    const auto before = ::umask(0077);
    Practice::build(place, {.broken = true, .seed = 7});
    ::umask(before);
    fs::permissions(place, permissions);  // The folder itself is the user's.
    EXPECT_EQ(test::pictureOf(place), picture);
    EXPECT_EQ(timesOf(place), times);
}

TEST(PracticeMachine, DiffersForAnotherSeed) {
    const TemporaryFolder folder;
    Practice::build(folder / "a", {.seed = 7});
    Practice::build(folder / "b", {.seed = 8});
    EXPECT_NE(test::pictureOf(folder / "a"), test::pictureOf(folder / "b"));
}

TEST(PracticeMachine, CountsWhatItMade) {
    const TemporaryFolder folder;
    const auto machine = Practice::build(folder / "machine", {.broken = true});
    std::int64_t files = 0, folders = 0, links = 0, bytes = 0;
    for (const auto& entry : fs::recursive_directory_iterator(machine.root)) {
        if (entry.is_symlink()) {
            ++links;
        } else if (entry.is_directory()) {
            ++folders;
        } else {
            ++files;
            bytes += static_cast<std::int64_t>(entry.file_size());
        }
    }
    EXPECT_EQ(machine.files, files);
    EXPECT_EQ(machine.folders, folders);
    EXPECT_EQ(machine.links, links);
    EXPECT_EQ(machine.bytes, bytes);
    EXPECT_LT(bytes, 40'000'000);
}

TEST(PracticeMachine, HoldsAsManyFilesAndAppsAsAskedFor) {
    const TemporaryFolder folder;
    const auto machine = Practice::build(folder / "machine", {.apps = 0, .specialApps = false, .files = 1234});
    EXPECT_EQ(machine.files, 1234);
    const auto withApps = Practice::build(folder / "apps", {.apps = 15, .specialApps = false, .files = 0});
    const auto apps = fs::directory_iterator(withApps.root / "Applications");
    EXPECT_EQ(std::distance(begin(apps), end(apps)), 15);
}

TEST(PracticeMachine, SpreadsTheFilesOfApplicationsOverBundlesAndData) {
    const TemporaryFolder folder;
    const Practice::Options without{.apps = 4, .specialApps = false, .files = 10};
    Practice::Options with = without;
    with.appFiles = 201;
    const auto before = Practice::build(folder / "without", without);
    const auto after = Practice::build(folder / "with", with);
    EXPECT_EQ(after.files, before.files + 201);
    for (const auto& app : fs::directory_iterator(after.root / "Applications")) {
        EXPECT_FALSE(fs::is_empty(app.path() / "Contents/Resources")) << app;
        EXPECT_FALSE(fs::is_empty(after.home / "Library/Application Support" / app.path().stem())) << app;
    }
    EXPECT_FALSE(fs::is_empty(after.home / "Library/Caches/org.example.practice4"));
    // The rest of the machine is what it is without them.
    EXPECT_EQ(test::pictureOf(after.home / "Documents"), test::pictureOf(before.home / "Documents"));
}

TEST(PracticeMachine, HasOneUserAndTwoDrives) {
    const TemporaryFolder folder;
    const auto machine = Practice::build(folder / "machine");
    const auto users = fs::directory_iterator(machine.root / "Users");
    EXPECT_EQ(std::distance(begin(users), end(users)), 1);
    EXPECT_EQ(machine.home.parent_path(), machine.root / "Users");
    ASSERT_EQ(machine.drives.size(), 2U);
    for (const auto& drive : machine.drives) EXPECT_TRUE(fs::is_directory(drive));
}

TEST(PracticeMachine, HasSomethingAtEveryCommonCandidate) {
    const TemporaryFolder folder;
    const auto machine = Practice::build(folder / "machine");
    for (const auto* candidate : {"Music/Logic Pro Library.bundle", "Library/Application Support/Claude", "Downloads",
                                  "Library/Developer/Xcode/DerivedData"})
        EXPECT_FALSE(fs::is_empty(machine.home / candidate)) << candidate;
}

TEST(PracticeMachine, HasDataOfApplicationsThatOnlyATableOrTheTrackingDatabaseKnows) {
    const TemporaryFolder folder;
    const auto machine = Practice::build(folder / "machine");
    const Host host = Host::rootedAt(machine.root, machine.home);
    const auto entries = AppScanner::discoverMetadata(host);
    const auto dataOf = [&](const std::string& name) {
        const auto entry =
            std::find_if(entries.begin(), entries.end(), [&](const AppEntry& each) { return each.name == name; });
        return entry == entries.end() ? std::vector<fs::path>() : entry->dataPaths;
    };
    const fs::path support = machine.root / "Library/Application Support";
    using testing::ElementsAre;
    EXPECT_THAT(dataOf("Logic Pro"), ElementsAre(support / "Logic", support / "GarageBand"));
    EXPECT_THAT(dataOf("Final Cut Pro"), ElementsAre(support / "ProApps"));
    EXPECT_THAT(dataOf("Adobe Photoshop 2026"), ElementsAre(support / "Adobe"));
    EXPECT_THAT(dataOf("Guitar Pro 8"), ElementsAre(support / "Arobas Music"));
    EXPECT_THAT(dataOf("FL Studio 2025"), ElementsAre(support / "Image-Line"));
    EXPECT_THAT(dataOf("SpectraLayers 12"), ElementsAre(support / "Steinberg"));
    EXPECT_THAT(dataOf("Nameless"), ElementsAre(machine.home / "Documents/Nameless Drawings"));
    EXPECT_THAT(dataOf("Claude"), testing::Not(testing::Contains(machine.home / ".claude.json")));
    const auto handler = std::find_if(entries.begin(), entries.end(),
                                      [](const AppEntry& entry) { return entry.name == "Claude Code URL Handler"; });
    ASSERT_NE(handler, entries.end());
    EXPECT_THAT(handler->dataPaths, testing::IsEmpty()) << "the dotfiles belong to the command";
}

TEST(PracticeMachine, HasABundleWithoutAnIdentifierAndTwoCopiesOfAnother) {
    const TemporaryFolder folder;
    const auto machine = Practice::build(folder / "machine");
    const Host host = Host::rootedAt(machine.root, machine.home);
    const auto nameless = AppScanner::metadataEntry(host, machine.root / "Applications/Nameless.app");
    EXPECT_EQ(nameless->bundleIdentifier, std::nullopt);
    EXPECT_EQ(nameless->version, "0.9");
    const fs::path copies[] = {machine.root / "Applications/Twice.app",
                               machine.drives.front() / "ExternalTarvik/Apps/Twice.app"};
    for (const fs::path& copy : copies)
        EXPECT_EQ(AppScanner::metadataEntry(host, copy)->bundleIdentifier, "org.example.twice") << copy;
}

TEST(PracticeMachine, HoldsWhatIsEasilyLostInACopy) {
    const TemporaryFolder folder;
    const auto machine = Practice::build(folder / "machine");
    bool hidden = false, empty = false, link = false, dangling = false, foreign = false, readOnly = false;
    for (const auto& entry : fs::recursive_directory_iterator(machine.home)) {
        const auto name = entry.path().filename().native();
        hidden = hidden || name.front() == '.';
        foreign = foreign || std::any_of(name.begin(), name.end(), [](char byte) { return byte < 0; });
        if (entry.is_symlink()) {
            link = true;
            dangling = dangling || !entry.exists();
        } else if (entry.is_regular_file()) {
            empty = empty || entry.file_size() == 0;
            readOnly = readOnly || entry.status().permissions() == fs::perms(0444);
        }
    }
    EXPECT_TRUE(hidden && empty && link && dangling && foreign && readOnly);
}

TEST(PracticeMachine, IsNotMadeWhereSomethingStands) {
    const TemporaryFolder folder;
    test::makeFile(folder / "used/file");
    const auto before = test::pictureOf(folder.path());
    EXPECT_EQ(sentenceOfBuilding(folder / "used"),
              (folder / "used").native() + " is not empty: a practice machine needs a folder of its own.");
    EXPECT_NE(sentenceOfBuilding(folder / "used/file"), "built");
    test::makeLink(folder / "gone", "nowhere");
    EXPECT_EQ(sentenceOfBuilding(folder / "gone"), (folder / "gone").native() + " is a link that leads nowhere.");
    fs::remove(folder / "gone");
    EXPECT_EQ(test::pictureOf(folder.path()), before);
}

TEST(PracticeMachine, IsMadeInAnEmptyFolder) {
    const TemporaryFolder folder;
    EXPECT_EQ(Practice::build(folder.path(), {.apps = 1, .files = 1}).root, folder.path());
}

}  // namespace tarvik
