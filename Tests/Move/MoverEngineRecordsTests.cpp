// What the engine asks and tells others: the running applications, the manifest, the tracking database.
#include "Copying/MoverError.h"
#include "Move/MoverEngine.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Text/PropertyList.h"
#include "Records/HealthManifest.h"
#include "Records/InstallsDB.h"
#include "Support/Bundles.h"
#include "Support/FailureOf.h"
#include "Support/TrackingDatabase.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace tarvik::test {

using testing::IsEmpty;
using testing::SizeIs;

namespace {

/// A world with one application to move.
class MoverEngineRecords : public testing::Test {
protected:
    MoverEngineRecords() {
        const PropertyList list(PropertyList::Dictionary{{"CFBundleIdentifier", "org.example.editor"},
                                                         {"CFBundleShortVersionString", "1.2"}});
        makeFile(app / "Contents/Info.plist", list.xml());
        makeFile(app / "Contents/MacOS/Editor", "program");
    }

    /// "moved", or the description of the failure.
    std::string move(const fs::path& item, bool quitRunning = false) {
        try {
            MoverEngine::moveAndLink(
                world.host, item, world.drive / "Apps", quitRunning, [](const JobStatus&) {},
                [](std::int64_t, std::int64_t) {});
        } catch (const Failure& failure) {
            return failure.description();
        }
        return "moved";
    }

    void run(const fs::path& bundle) { world.applications->list.push_back({.bundlePath = bundle}); }

    std::string rows() const {
        return askDatabase(database,
                           "SELECT app_name, bundle_id, version, source_file, install_type,"
                           " uninstalled_at IS NULL FROM installs ORDER BY rowid");
    }

    World world;
    fs::path app = world.home / "Applications/Editor.app";
    fs::path moved = world.drive / "Apps/Editor.app";
    fs::path database = InstallsDB::defaultPath(world.host);
};

}  // namespace

TEST_F(MoverEngineRecords, RefusesAnApplicationThatRuns) {
    run(app);
    EXPECT_EQ(move(app), "App is running: Editor.app. Quit it first, or pass --quit-running.");
    EXPECT_TRUE(Files::isFolder(app));
    EXPECT_FALSE(Files::itemExists(world.drive / "Apps"));
    EXPECT_THAT(world.applications->terminated, IsEmpty());
}

TEST_F(MoverEngineRecords, TakeAnEmptyBundleIdentifierForNone) {
    makeTrackingDatabase(database);
    test::makeBundle(app, {{"CFBundleIdentifier", ""}});
    EXPECT_EQ(move(app), "moved");
    const auto entries = HealthManifest::load(world.host);
    ASSERT_THAT(entries, SizeIs(1));
    EXPECT_EQ(entries[0].bundleIdentifier, std::nullopt);
    EXPECT_EQ(askDatabase(database, "SELECT count(*) FROM installs WHERE bundle_id IS NULL"), "1\n");
}

TEST_F(MoverEngineRecords, QuitsAnApplicationWhenItIsToldTo) {
    run(app);
    world.applications->quitsWhenAsked = true;
    EXPECT_EQ(move(app, true), "moved");
    EXPECT_THAT(world.applications->terminated, SizeIs(1));
    EXPECT_EQ(Files::linkText(app), moved);
}

TEST_F(MoverEngineRecords, RefusesAnApplicationThatWillNotQuit) {
    run(app);
    EXPECT_EQ(move(app, true), "App is running: Editor.app. Quit it first, or pass --quit-running.");
    EXPECT_TRUE(Files::isFolder(app));
    EXPECT_THAT(world.applications->forced, IsEmpty());
}

TEST_F(MoverEngineRecords, AsksOnlyForBundlesThatEndInApp) {
    const fs::path loud = world.home / "Loud.APP";
    makeFile(loud / "file");
    run(loud);
    EXPECT_EQ(move(loud), "moved");
}

TEST_F(MoverEngineRecords, RemembersWhatItMoved) {
    EXPECT_EQ(move(app), "moved");
    const auto entries = HealthManifest::load(world.host);
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].sourcePath, app);
    EXPECT_EQ(entries[0].destinationPath, moved);
    EXPECT_EQ(entries[0].bundleIdentifier, "org.example.editor");
    EXPECT_GT(entries[0].sizeBytes, 0);
    EXPECT_EQ(entries[0].movedAt, world.host.now());
    EXPECT_FALSE(Files::itemExists(database));
}

TEST_F(MoverEngineRecords, ForgetsWhatCameBack) {
    makeFile(world.home / "Music/song");
    EXPECT_EQ(move(app), "moved");
    EXPECT_EQ(move(world.home / "Music"), "moved");
    MoverEngine::restore(world.host, app);
    const auto entries = HealthManifest::load(world.host);
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].sourcePath, world.home / "Music");
    EXPECT_EQ(entries[0].bundleIdentifier, std::nullopt);
}

TEST_F(MoverEngineRecords, BringsBackWhatALauncherOpens) {
    makeTrackingDatabase(database);
    EXPECT_EQ(move(app), "moved");
    const std::string picture = pictureOf(moved);
    // The link has become a launcher since, as a repair makes one.
    fs::remove(app);
    makeFile(app / "Contents/Resources/ExternalAppTarget.txt", moved.native() + "\n");
    MoverEngine::restore(world.host, app);
    EXPECT_EQ(pictureOf(app), picture);
    EXPECT_FALSE(Files::itemExists(moved));
    EXPECT_THAT(Files::names(app.parent_path()), testing::ElementsAre("Editor.app"));
    EXPECT_THAT(HealthManifest::load(world.host), IsEmpty());
    EXPECT_EQ(askDatabase(database, "SELECT count(*) FROM installs WHERE uninstalled_at IS NULL"), "0\n");
}

/// A Trash, during whose work somebody else does something.
class BusyTrash : public MadeTrash {
public:
    BusyTrash(fs::path trashFolder, std::function<void()> act)
        : MadeTrash(std::move(trashFolder)), m_act(std::move(act)) {}
    fs::path moveToTrash(const fs::path& item) const override {
        m_act();
        return MadeTrash::moveToTrash(item);
    }

private:
    std::function<void()> m_act;
};

TEST_F(MoverEngineRecords, SaysWhenWhatCameBackIsGoneAgainAndForgetsNothing) {
    makeTrackingDatabase(database);
    EXPECT_EQ(move(app), "moved");
    const std::string rowsBefore = rows();
    fs::remove(app);
    makeFile(app / "Contents/Resources/ExternalAppTarget.txt", moved.native());
    const auto failureOfRestore = [&](const std::function<void()>& meddle) {
        world.host.trash = std::make_shared<BusyTrash>(world.folder / "Trash", meddle);
        return failureOf([&] { MoverEngine::restore(world.host, app); });
    };
    EXPECT_EQ(failureOfRestore([&] { fs::rename(app, world.home / "Taken.app"); }),
              "Verification failed: Editor.app missing after restore");
    EXPECT_THAT(HealthManifest::load(world.host), SizeIs(1));
    EXPECT_EQ(rows(), rowsBefore);

    fs::rename(world.home / "Taken.app", moved);
    makeFile(app / "Contents/Resources/ExternalAppTarget.txt", moved.native());
    EXPECT_EQ(failureOfRestore([&] {
                  fs::rename(app, world.home / "Taken.app");
                  makeLink(app, world.home / "Taken.app");
              }),
              "Verification failed: Editor.app is still a symlink after restore — data was not internalized");
    EXPECT_THAT(HealthManifest::load(world.host), SizeIs(1));
    EXPECT_EQ(rows(), rowsBefore);
}

TEST_F(MoverEngineRecords, RemembersWhatALauncherStandsForWhenItsWayBackFails) {
    makeTrackingDatabase(database);
    EXPECT_EQ(move(app), "moved");
    fs::remove(app);
    makeFile(app / "Contents/Resources/ExternalAppTarget.txt", moved.native() + "\n");
    // The launcher can go nowhere.
    world.trash->refuses = true;
    makeFile(app.parent_path() / ".TarvikTrash", "a file in the way");
    EXPECT_EQ(failureOf([&] { MoverEngine::restore(world.host, app); }),
              "Could not remove " + app.native() + ": Operation not permitted");
    EXPECT_TRUE(Files::isFolder(moved));
    EXPECT_THAT(HealthManifest::load(world.host), SizeIs(1));
    EXPECT_EQ(askDatabase(database, "SELECT count(*) FROM installs WHERE uninstalled_at IS NULL"), "1\n");
}

TEST_F(MoverEngineRecords, LeavesALauncherWhoseApplicationIsGone) {
    makeFile(world.home / "Ghost.app/Contents/Resources/ExternalAppTarget.txt", "/nowhere/Ghost.app");
    const std::string picture = pictureOf(world.home / "Ghost.app");
    EXPECT_THROW(MoverEngine::restore(world.host, world.home / "Ghost.app"), FileError);
    EXPECT_EQ(pictureOf(world.home / "Ghost.app"), picture);
}

TEST_F(MoverEngineRecords, LeavesALinkThatLeadsToAnotherLink) {
    makeFile(world.drive / "real/file");
    makeLink(world.drive / "inner", world.drive / "real");
    makeLink(world.home / "outer", world.drive / "inner");
    try {
        MoverEngine::restore(world.host, world.home / "outer");
        FAIL();
    } catch (const MoverError& error) {
        EXPECT_EQ(error.description(),
                  "Verification failed: outer is still a symlink after restore — data was not internalized");
    }
    EXPECT_EQ(Files::linkText(world.home / "outer"), world.drive / "inner");
    EXPECT_EQ(Files::linkText(world.drive / "inner"), world.drive / "real");
}

TEST_F(MoverEngineRecords, TellsTheTrackingDatabase) {
    makeTrackingDatabase(database);
    EXPECT_EQ(move(app), "moved");
    const std::string row = "Editor.app|org.example.editor|1.2|" + moved.native() + "|app_move|";
    EXPECT_EQ(rows(), row + "1\n");
    MoverEngine::restore(world.host, app);
    EXPECT_EQ(rows(), row + "0\n");
}

TEST_F(MoverEngineRecords, RemembersNothingOfAMoveThatFailed) {
    makeTrackingDatabase(database);
    world.withDitto("exit 1");
    EXPECT_EQ(move(app), "Copy failed: ditto failed: exit 1");
    EXPECT_THAT(HealthManifest::load(world.host), IsEmpty());
    EXPECT_EQ(rows(), "");
}

TEST_F(MoverEngineRecords, MovesAlthoughNothingCanBeRemembered) {
    makeFile(world.home / "Library", "a file where a folder should be");
    makeFile(database, "no database");
    EXPECT_EQ(move(app), "moved");
    EXPECT_EQ(Files::linkText(app), moved);
    EXPECT_EQ(contentOf(database), "no database");
}

}  // namespace tarvik::test
