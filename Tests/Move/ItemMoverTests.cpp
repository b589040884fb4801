#include "Copying/Leftovers.h"
#include "Move/ItemMover.h"
#include "Move/MoverEngine.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Support/Bundles.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <thread>

namespace tarvik::test {

using testing::ElementsAre;

namespace {

/// A single file that was moved to another volume.
class FileOnADrive : public testing::Test {
protected:
    void SetUp() override {
        TARVIK_NEEDS_MEMORY_VOLUMES();
        volume.emplace(RealVolume::memory(mounts.path(), 20'000'000));
        world.emplace(volume->path());
        link = world->home / "movie";
        file = world->foldersOnDrive() / "movie";
        makeFile(file, "pictures");
        makeLink(link, file);
    }

    std::string failureOfRestore() const {
        try {
            MoverEngine::restore(world->host, link);
        } catch (const Failure& failure) {
            return failure.description();
        }
        return "done";
    }

    void expectRestored() const {
        EXPECT_EQ(contentOf(link), "pictures");
        EXPECT_FALSE(Files::isSymbolicLink(link));
        EXPECT_FALSE(Files::itemExists(file));
        EXPECT_THAT(world->namesAtHome(), ElementsAre("movie"));
        EXPECT_FALSE(Files::itemExists(world->trash->folder));
    }

    void expectStillMoved() const {
        EXPECT_EQ(Files::linkText(link), file);
        EXPECT_EQ(contentOf(file), "pictures");
        EXPECT_THAT(world->namesAtHome(), ElementsAre("movie"));
        EXPECT_THAT(Files::names(file.parent_path()), ElementsAre("movie"));
    }

    const TemporaryFolder mounts;
    std::optional<RealVolume> volume;
    std::optional<World> world;
    fs::path link;
    fs::path file;
};

}  // namespace

TEST_F(FileOnADrive, IsNotSweptAwayWhileItComesBack) {
    // The tool makes the file anew, whatever stands there.
    const fs::path isCopied = world->folder / "copied";
    const fs::path isSwept = world->folder / "swept";
    world->withDitto("rm -f \"$3\"; cp -a \"$2\" \"$3\"\n: > '" + isCopied.native() + "'\n" + waitFor(isSwept));
    std::thread other([&] {
        while (!Files::exists(isCopied)) std::this_thread::sleep_for(std::chrono::milliseconds(5));
        Leftovers::sweep(world->host, world->home);
        makeFile(isSwept);
    });
    EXPECT_EQ(failureOfRestore(), "done");
    other.join();
    expectRestored();
}

TEST_F(FileOnADrive, StaysThereWhenTheWayBackFails) {
    world->withDitto("echo half > \"$3\"; echo \"Could not write $3\" >&2; exit 3");
    EXPECT_EQ(failureOfRestore(), "ditto failed: Could not write " + link.native());
    expectStillMoved();
    world->withDitto("echo half > \"$3\"");
    EXPECT_EQ(failureOfRestore(), "Verification failed: movie copied with a different file size.");
    expectStillMoved();
    EXPECT_FALSE(Files::itemExists(world->trash->folder));
}

TEST_F(FileOnADrive, StaysThereWhenItWasWrittenToMeanwhile) {
    world->withDitto("cp -a \"$2\" \"$3\"; printf 'PICTURES' > \"$2\"");
    EXPECT_EQ(failureOfRestore(), "Verification failed: movie was changed while it was copied.");
    EXPECT_EQ(Files::linkText(link), file);
    EXPECT_EQ(contentOf(file), "PICTURES");
    EXPECT_THAT(world->namesAtHome(), ElementsAre("movie"));
    EXPECT_FALSE(Files::itemExists(world->trash->folder)) << "nobody has seen the copy";
}

TEST_F(FileOnADrive, StaysThereWhenItWasReplacedByAnOlderOneMeanwhile) {
    world->withDitto(
        "cp -a \"$2\" \"$3\"; printf 'PICTURES' > \"$2.new\"\n"
        "touch -t 200101010000 \"$2.new\"; mv \"$2.new\" \"$2\"");
    EXPECT_EQ(failureOfRestore(), "Verification failed: movie was changed while it was copied.");
    EXPECT_EQ(Files::linkText(link), file);
    EXPECT_EQ(contentOf(file), "PICTURES");
}

namespace {

/// An application on a drive, and a launcher for it at home in which the user keeps something.
class LauncherOfMovedApplication : public testing::Test {
protected:
    void use(const fs::path& drive) {
        world.emplace(drive);
        world->withRealDitto();
        launcher = world->home / "My Editor.app";
        application = world->foldersOnDrive() / "Editor.app";
        makeBundle(application);
        makeLauncher(launcher, application);
        makeFile(launcher / "notes", "mine");
        pictureOfApplication = pictureOf(application);
        pictureOfLauncher = pictureOf(launcher);
    }

    std::string failureOfRestore() const {
        try {
            MoverEngine::restore(world->host, launcher);
        } catch (const Failure& failure) {
            return failure.description();
        }
        return "done";
    }

    void expectRestored() const {
        EXPECT_EQ(pictureOf(launcher), pictureOfApplication);
        EXPECT_FALSE(Files::itemExists(application));
    }

    std::optional<World> world;
    fs::path launcher;
    fs::path application;
    std::string pictureOfApplication;
    std::string pictureOfLauncher;
};

}  // namespace

TEST_F(LauncherOfMovedApplication, GoesToTheTrashWithinAVolume) {
    use({});
    EXPECT_EQ(failureOfRestore(), "done");
    expectRestored();
    EXPECT_THAT(world->namesAtHome(), ElementsAre("My Editor.app"));
    EXPECT_EQ(pictureOf(world->trash->folder / "My Editor.app"), pictureOfLauncher);
}

TEST_F(LauncherOfMovedApplication, GoesToTheTrashAcrossVolumes) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder mounts;
    const RealVolume volume = RealVolume::memory(mounts.path(), 20'000'000);
    use(volume.path());
    EXPECT_EQ(failureOfRestore(), "done");
    expectRestored();
    EXPECT_THAT(world->namesAtHome(), ElementsAre("My Editor.app"));
    EXPECT_EQ(pictureOf(world->trash->folder / "My Editor.app"), pictureOfLauncher);
}

TEST_F(LauncherOfMovedApplication, IsSetAsideWhereTheTrashRefuses) {
    use({});
    world->trash->refuses = true;
    EXPECT_EQ(failureOfRestore(), "done");
    expectRestored();
    const auto aside = Files::names(world->home / ".TarvikTrash");
    ASSERT_EQ(aside.size(), 1U);
    EXPECT_THAT(aside[0], testing::StartsWith("My Editor.app-"));
    EXPECT_EQ(pictureOf(world->home / ".TarvikTrash" / aside[0]), pictureOfLauncher);
}

TEST_F(LauncherOfMovedApplication, StaysWhereNothingTakesIt) {
    use({});
    world->trash->refuses = true;
    makeFile(world->home / ".TarvikTrash", "no folder");
    EXPECT_EQ(failureOfRestore(), "Could not remove " + launcher.native() + ": Operation not permitted");
    EXPECT_EQ(pictureOf(launcher), pictureOfLauncher);
    EXPECT_EQ(pictureOf(application), pictureOfApplication);
    EXPECT_THAT(world->namesAtHome(), ElementsAre(".TarvikTrash", "My Editor.app"));
}

TEST_F(LauncherOfMovedApplication, IsClearedLaterWhereNothingTakesItAcrossVolumes) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder mounts;
    const RealVolume volume = RealVolume::memory(mounts.path(), 20'000'000);
    use(volume.path());
    world->trash->refuses = true;
    makeFile(world->home / ".TarvikTrash", "no folder");
    EXPECT_EQ(failureOfRestore(), "done");
    expectRestored();
    world->trash->refuses = false;
    Leftovers::sweep(world->host, world->home);
    EXPECT_THAT(world->namesAtHome(), ElementsAre(".TarvikTrash", "My Editor.app"));
    EXPECT_EQ(pictureOf(world->trash->folder / "My Editor.app (left by an interrupted move)"), pictureOfLauncher);
}

}  // namespace tarvik::test
