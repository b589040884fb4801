#include "Move/HiddenPlace.h"
#include "Move/ItemMover.h"
#include "Move/MoverEngine.h"
#include "Platform/Failure.h"
#include "Platform/Files.h"
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
        HiddenPlace::sweep(world->host, world->home);
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

}  // namespace tarvik::test
