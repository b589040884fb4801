// A drive that goes away, fails or may not be written to any more while a copy is under way.
#include "Move/MoverEngine.h"
#include "Platform/Files/Files.h"
#include "Support/Linux/DriveFaults.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>

namespace tarvik::test {

namespace {

/// A drive, and a copy tool that stops when half of the tree has been copied until the test has done something.
class InterruptedMove : public testing::Test {
protected:
    void SetUp() override {
        TARVIK_NEEDS_REAL_VOLUMES();
        volume.emplace(RealVolume::ext4(mounts.path(), 20'000'000));
        world.emplace(volume->path());
        home = world->home / "Music";
        onDrive = world->foldersOnDrive() / "Music";
        world->withDitto("mkdir -p \"$3\"\n" + realDitto + "\"$2/first\" \"$3/first\" || exit\n" + halt() + "exec " +
                         realDitto + "\"$2\" \"$3\"");
    }

    /// The tool's line that waits for the test.
    std::string halt() const { return ": > '" + isHalfway.native() + "'\n" + waitFor(isActDone); }

    void makeTree(const fs::path& root) {
        makeFileOfSize(root / "first/song", 200'000);
        makeFileOfSize(root / "second/song", 200'000, 2);
        makeLink(root / "second/link", "../first/song");
        picture = pictureOf(root);
    }

    /// The engine reports progress while the tool waits: that is the moment.
    void actWhenHalfway(const std::function<void()>& act) const {
        if (!Files::exists(isHalfway) || Files::exists(isActDone)) return;
        act();
        makeFile(isActDone);
    }

    std::string failureOfMove(const std::function<void()>& meanwhile) const {
        return failureOf(
            [&](const auto& progress) {
                MoverEngine::moveAndLink(
                    world->host, home, world->foldersOnDrive(), false, [](const JobStatus&) {}, progress);
            },
            meanwhile);
    }

    std::string failureOfRestore(const std::function<void()>& meanwhile) const {
        return failureOf([&](const auto& progress) { MoverEngine::restore(world->host, home, progress); }, meanwhile);
    }

    const TemporaryFolder mounts;
    const TemporaryFolder signs;
    const fs::path isHalfway = signs / "halfway";
    const fs::path isActDone = signs / "act done";
    const std::string realDitto = "'" + programOfThisBuild("stand-ins/ditto").native() + "' --rsrc ";
    std::optional<RealVolume> volume;
    std::optional<World> world;
    fs::path home;
    fs::path onDrive;
    std::string picture;

private:
    std::string failureOf(const std::function<void(const MoverEngine::ProgressCallback&)>& act,
                          const std::function<void()>& meanwhile) const {
        try {
            act([&](std::int64_t, std::int64_t) { actWhenHalfway(meanwhile); });
        } catch (const Failure& failure) {
            return failure.description();
        }
        return "done";
    }
};

}  // namespace

TEST_F(InterruptedMove, KeepsTheOriginalWhenTheToolGoesOnWithoutTheDrive) {
    makeTree(home);
    EXPECT_EQ(failureOfMove([this] { volume->detach(); }),
              "Verification failed: The target drive was disconnected while it was written to.");
    EXPECT_EQ(pictureOf(home), picture);
    EXPECT_FALSE(Files::itemExists(onDrive));
}

TEST_F(InterruptedMove, KeepsTheOriginalWhenTheToolWritesToADriveThatHasGone) {
    makeTree(home);
    // It holds its folder open, so that every write goes well.
    world->withDitto("mkdir -p \"$3\" && cd \"$3\" && cp -a \"$2/first\" . || exit\n" + halt() +
                     "cp -a \"$2/second\" .");
    EXPECT_EQ(failureOfMove([this] { volume->detach(); }), "Verification failed: Music is missing at the destination.");
    EXPECT_EQ(pictureOf(home), picture);
}

TEST_F(InterruptedMove, KeepsTheOriginalWhenTheDriveFails) {
    makeTree(home);
    EXPECT_THAT(
        failureOfMove([this] { failDrive(volume->path()); }),
        testing::MatchesRegex("Copy failed: ditto failed: ditto: .*: Input/output error( \\(and [0-9]+ more\\))?"));
    EXPECT_EQ(pictureOf(home), picture);
}

TEST_F(InterruptedMove, KeepsTheOriginalWhenTheDriveTurnsReadOnly) {
    makeTree(home);
    EXPECT_THAT(
        failureOfMove([this] { volume->remountReadOnly(); }),
        testing::MatchesRegex("Copy failed: ditto failed: ditto: .*: Read-only file system( \\(and [0-9]+ more\\))?"));
    EXPECT_EQ(pictureOf(home), picture);
    // Where nothing can be changed, the partial copy cannot be disposed of. It does not bear the item's name.
    EXPECT_FALSE(Files::itemExists(onDrive));
    const auto left = Files::names(onDrive.parent_path());
    ASSERT_EQ(left.size(), 1U);
    EXPECT_TRUE(left[0].starts_with(".tarvik-moving-"));
}

TEST_F(InterruptedMove, KeepsTheLinkWhenTheDriveGoesOnTheWayBack) {
    makeTree(onDrive);
    makeLink(home, onDrive);
    EXPECT_THAT(failureOfRestore([this] { volume->detach(); }),
                testing::MatchesRegex("ditto failed: ditto: Cannot get the real path for source .*"));
    EXPECT_EQ(Files::linkText(home), onDrive);
    EXPECT_EQ(world->namesAtHome(), std::vector<std::string>{"Music"});
}

TEST_F(InterruptedMove, KeepsTheLinkWhenTheDriveFailsOnTheWayBack) {
    makeTree(onDrive);
    makeLink(home, onDrive);
    EXPECT_THAT(failureOfRestore([this] { failDrive(volume->path()); }),
                testing::MatchesRegex("ditto failed: ditto: .*: Input/output error( \\(and [0-9]+ more\\))?"));
    EXPECT_EQ(Files::linkText(home), onDrive);
    EXPECT_EQ(world->namesAtHome(), std::vector<std::string>{"Music"});
}

TEST_F(InterruptedMove, LosesNothingWhenTheDriveTurnsReadOnlyOnTheWayBack) {
    makeTree(onDrive);
    makeLink(home, onDrive);
    EXPECT_THAT(failureOfRestore([this] { volume->remountReadOnly(); }),
                testing::MatchesRegex("Music is in its place again, but .*: Read-only file system"));
    EXPECT_EQ(pictureOf(onDrive), picture);
    EXPECT_EQ(pictureOf(home), picture);
    EXPECT_EQ(world->namesAtHome(), std::vector<std::string>{"Music"});
}

}  // namespace tarvik::test
