#include "Platform/Basics/Failure.h"
#include "Platform/Storage/DriveGuard.h"
#include "Support/FailureOf.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <optional>

namespace tarvik::test {

TEST(DriveGuard, HoldsWhatIsOrWillBeOnItsVolume) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder folder;
    const auto drive = RealVolume::memory(folder.path(), megabyte);
    makeFile(drive / "Music/song");
    makeLink(folder / "link", drive.path());

    const DriveGuard guard(drive.path());
    EXPECT_TRUE(guard.holds(drive.path()));
    EXPECT_TRUE(guard.holds(drive / "Music/song"));
    EXPECT_TRUE(guard.holds(drive / "Music/new/folder"));
    EXPECT_TRUE(guard.holds(folder / "link/new"));
    EXPECT_FALSE(guard.holds(folder.path()));
    EXPECT_FALSE(guard.holds(folder / "Music"));
    EXPECT_EQ(guard, DriveGuard::ofFolder(drive / "Music/new/folder"));
    EXPECT_NE(guard, DriveGuard(folder.path()));
}

TEST(DriveGuard, DoesNotTakeTheDiskBelowForADriveThatHasGone) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder folder;
    auto drive = RealVolume::memory(folder.path(), megabyte);
    const fs::path place = drive.path();
    const DriveGuard guard(place);
    EXPECT_NO_THROW(guard.require(place / "Music"));

    drive.detach();
    EXPECT_EQ(failureOf([&] { guard.require(place / "Music"); }), "Target drive disconnected");
    fs::remove(place);
    EXPECT_EQ(failureOf([&] { guard.require(place / "Music"); }), "Target drive disconnected");
    EXPECT_EQ(failureOf([&] { const DriveGuard late(place); }), "Target drive disconnected");
}

TEST(DriveGuard, KeepsItsDriveFromBeingEjected) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder folder;
    auto drive = RealVolume::memory(folder.path(), megabyte);
    makeFolder(drive / "Music");
    for (const fs::path& place : {drive.path(), drive / "Music"}) {
        auto guard = std::make_optional<DriveGuard>(place);
        const DriveGuard copy = *guard;
        guard.reset();
        EXPECT_FALSE(drive.eject()) << place;
    }
    EXPECT_TRUE(drive.eject());
}

TEST(DriveGuard, DoesNotTakeAnotherDriveInItsPlaceForItsOwn) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder folder;
    auto drive = RealVolume::memory(folder.path(), megabyte);
    const DriveGuard guard(drive.path());
    drive.detach();
    // Without the hold the next one would get its number.
    const auto another = RealVolume::memory(folder.path(), megabyte);
    EXPECT_FALSE(guard.holds(another.path()));
}

}  // namespace tarvik::test
