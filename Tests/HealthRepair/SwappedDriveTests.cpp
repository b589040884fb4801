// Repairs act on the drive that the check has seen, or on none.
#include "HealthRepair/HealthRepairTest.h"
#include "Support/RealVolume.h"

#include <cstdlib>
#include <fstream>
#include <utility>

namespace tarvik {

namespace {

using enum HealthRepairStrategy;

class SwappedDrive : public test::HealthRepairTest {
protected:
    SwappedDrive() { world.volumes->list.front().identifier = "first"; }

    void swapDrive() const { world.volumes->list.front().identifier = "second"; }
    /// The sentence of a repair that changes nothing.
    std::string harmlessRefusal(const HealthIssue& issue, HealthRepairStrategy strategy) const {
        const auto before = test::pictureOf(world.folder.path());
        const auto sentence = refusal(issue, strategy);
        EXPECT_EQ(test::pictureOf(world.folder.path()), before);
        return sentence;
    }
    std::string anotherDrive(const std::string& name) const {
        return "Another drive is at " + world.drive.native() + " than when " + name +
               " was checked. Nothing was changed.";
    }
};

}  // namespace

TEST_F(SwappedDrive, LosesNoCopyToARepair) {
    const auto reverted = revertedApp();
    swapDrive();
    for (const auto strategy : {reclaimReverted, reSymlinkReverted})
        EXPECT_EQ(harmlessRefusal(reverted, strategy), anotherDrive("Foo.app"));
    EXPECT_EQ(perform(problem(), reclaimReverted), "Reclaimed stale SSD copy of Foo.app.") << "of the new one";
}

TEST_F(SwappedDrive, LosesNoOrphan) {
    test::makeBundle(world.appsOnDrive / "Foo.app");
    const auto orphan = problem();
    swapDrive();
    EXPECT_EQ(harmlessRefusal(orphan, removeOrphan), anotherDrive("Foo.app"));
}

TEST_F(SwappedDrive, LosesNoEmptyBundle) {
    test::makeFolder(world.appsOnDrive / "Foo.app");
    test::makeLink(world.applications / "Foo.app", "../Volumes/Backup/ExternalTarvik/Apps/Foo.app");
    const auto empty = problem();
    swapDrive();
    EXPECT_EQ(harmlessRefusal(empty, removeEmpty), anotherDrive("Foo.app"));
}

TEST_F(SwappedDrive, GivesNothingBack) {
    test::makeFile(world.drive / "x.plist", "preferences");
    test::makeLink(world.library / "Preferences/x.plist", world.drive / "x.plist");
    const auto preferences = problem();
    swapDrive();
    EXPECT_EQ(harmlessRefusal(preferences, restoreUnsafePrefs), anotherDrive("x.plist"));
}

TEST_F(SwappedDrive, IsNotTakenForAnAbsentOne) {
    const auto reverted = revertedApp();
    world.volumes->list.clear();
    EXPECT_EQ(harmlessRefusal(reverted, reclaimReverted),
              "The drive of Foo.app is not connected. Nothing was changed.");
}

TEST_F(SwappedDrive, IsToldFromTheFirstByItsFileSystemToo) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const auto volume = test::RealVolume::memory(world.folder / "Volumes", test::megabyte);
    world.volumes->list = {{.mountPath = volume.path()}};
    const fs::path bundle = volume / "ExternalTarvik/Apps/Foo.app";
    test::makeBundle(bundle);
    const auto orphan = problem();
    EXPECT_EQ(orphan.drive->mountPath, volume.path());
    // As long as a part of the first is open, the second cannot get its number.
    std::ifstream open(bundle / "Contents/Info.plist");
    ASSERT_EQ(std::system((test::RealVolume::unplugging(volume.path()) + " && " +
                           test::RealVolume::plugging(volume.path(), test::megabyte))
                              .c_str()),
              0);
    test::makeBundle(bundle);
    EXPECT_EQ(refusal(orphan, removeOrphan),
              "Another drive is at " + volume.path().native() + " than when Foo.app was checked. Nothing was changed.");
    EXPECT_TRUE(fs::exists(bundle));
}

TEST_F(SwappedDrive, ComesToNothingWhereTheCheckHasSeenNone) {
    test::makeBundle(world.applications / "Foo.app");
    world.remember(world.applications / "Foo.app", world.drive / "Foo.app");
    const auto volumes = std::exchange(world.volumes->list, {});
    const auto reverted = problem();
    test::makeBundle(world.drive / "Foo.app");
    world.volumes->list = volumes;
    for (const auto strategy : {reclaimReverted, reSymlinkReverted})
        EXPECT_EQ(harmlessRefusal(reverted, strategy),
                  "The drive of Foo.app was not connected when it was checked: check again. Nothing was changed.");
}

}  // namespace tarvik
