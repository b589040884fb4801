// Bundles that nobody may change, as a Mac keeps those of other makers.
#include "MovePlan/AppManagement.h"
#include "MovePlan/MoveRun.h"
#include "MovePlan/WayBack.h"
#include "Support/Bundles.h"
#include "Support/FailureOf.h"
#include "Support/Linux/DriveFaults.h"
#include "Support/Linux/KeptItems.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <sys/xattr.h>

namespace tarvik::test {
namespace {

using testing::HasSubstr;

class KeptBundles : public testing::Test {
protected:
    void SetUp() override {
        TARVIK_NEEDS_KEPT_ITEMS();
        // A copy would be seen.
        world.withDitto("touch '" + (world.folder / "copied").native() + "'; cp -aT \"$2\" \"$3\"");
    }
    static void makeSigned(const fs::path& bundle) {
        makeBundle(bundle);
        makeFile(bundle / "Contents/_CodeSignature/CodeResources");
    }
    bool hasCopied() const { return fs::exists(world.folder / "copied"); }

    World world;
};

TEST_F(KeptBundles, AreNotCopiedInVain) {
    const fs::path bundle = world.folder / "Applications/Editor.app";
    makeSigned(bundle);
    const auto before = pictureOf(world.folder / "Applications");
    JobStatus last = JobStatus::pending();
    const MoveJob job("Editor", bundle, world.drive / "ExternalTarvik/Apps/Editor.app", JobStatus::pending(), 1, 0);
    const auto run = [&] {
        MoveRun::run(world.host, {job}, world.drive, false,
                     [&](std::size_t, const JobStatus& status) { last = status; }, {});
    };
    {
        const KeptItems kept({bundle / "Contents/Info.plist"});
        run();
    }
    EXPECT_EQ(last, JobStatus::failed(*AppManagement::refusalAfter({{bundle, EPERM}})));
    EXPECT_FALSE(hasCopied());
    EXPECT_EQ(pictureOf(world.folder / "Applications"), before);
    run();
    EXPECT_EQ(last, JobStatus::done()) << "it has been allowed";
}

TEST_F(KeptBundles, AreNotBroughtBackInVain) {
    const fs::path there = world.drive / "ExternalTarvik/Apps/Editor.app";
    const fs::path link = world.folder / "Applications/Editor.app";
    makeSigned(there);
    makeFolder(link.parent_path());
    makeLink(link, there);
    const auto plan = WayBack::plan(world.host, link);
    {
        const KeptItems kept({there / "Contents/Info.plist"});
        EXPECT_THAT(failureOf([&] { WayBack::run(world.host, plan, {}); }), HasSubstr("App Management"));
    }
    EXPECT_FALSE(hasCopied());
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(failureOf([&] { WayBack::run(world.host, plan, {}); }), "done");
}

TEST_F(KeptBundles, AreSeenByAnAttributeToo) {
    TARVIK_NEEDS_REAL_VOLUMES();
    const TemporaryFolder mounts;
    const RealVolume volume = RealVolume::ext4(mounts.path(), 20'000'000);
    const fs::path list = volume / "Editor.app/Contents/Info.plist";
    makeSigned(volume / "Editor.app");
    EXPECT_EQ(AppManagement::refusalOf(volume / "Editor.app"), std::nullopt);
    EXPECT_EQ(::listxattr(list.c_str(), nullptr, 0), 0) << "nothing stays";
    const Flagged locked(list, FileFlag::immutable);
    EXPECT_NE(AppManagement::refusalOf(volume / "Editor.app"), std::nullopt);
}

}  // namespace
}  // namespace tarvik::test
