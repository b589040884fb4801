#include "Support/RealVolume.h"
#include "Window/WindowTest.h"

#include <optional>

namespace tarvik::test {

namespace {

/// A volume, made before the window that shows it.
struct VolumeOfKind {
    explicit VolumeOfKind(RealVolume::Kind kind) {
        if (RealVolume::unavailableReason(kind)) return;
        volume.emplace(kind == RealVolume::Kind::ext4 ? RealVolume::ext4(mounts.path(), size)
                                                      : RealVolume::memory(mounts.path(), size));
    }

    static constexpr std::int64_t size = 16'000'000;
    TemporaryFolder mounts;
    std::optional<RealVolume> volume;
};

/// The window over a machine whose drive "Backup" is a real file system and whose copy tool is the one of this build.
class WindowOnVolumes : private VolumeOfKind, public WindowTest, public testing::WithParamInterface<RealVolume::Kind> {
protected:
    WindowOnVolumes() : VolumeOfKind(GetParam()), WindowTest(volume ? volume->path() : mounts.path()) {
        world.withRealDitto();
    }

    void SetUp() override { TARVIK_NEEDS_VOLUMES_OF_KIND(GetParam()); }
    /// Its picture would bear a slash in its name.
    void TearDown() override { opened.reset(); }

    RealVolume& drive() { return *volume; }
};

INSTANTIATE_TEST_SUITE_P(Kinds, WindowOnVolumes, testing::Values(RealVolume::Kind::ext4, RealVolume::Kind::memory),
                         [](const auto& kind) { return kind.param == RealVolume::Kind::ext4 ? "Ext4" : "Memory"; });

TEST_P(WindowOnVolumes, MovesAFolderAndBringsItBack) {
    auto& window = open();
    const auto photos = makePhotos();
    makeLink(photos / "2025/latest", "../2024");
    const auto before = pictureOf(photos);
    move(photos);
    EXPECT_TRUE(window.waitForText("job-Photos/transferStatus", "Done"));
    EXPECT_EQ(fs::read_symlink(photos), world.foldersOnDrive() / "Photos");
    EXPECT_EQ(pictureOf(world.foldersOnDrive() / "Photos"), before);

    window.click("job-Photos/moveBackButton");
    window.click("alertButton-0");
    EXPECT_TRUE(window.waitForText("restoreRow/transferStatus", "Done"));
    EXPECT_TRUE(window.waitForText("infoToast/toastText", "Restored Photos"));
    EXPECT_FALSE(fs::is_symlink(photos));
    EXPECT_EQ(pictureOf(photos), before);
    EXPECT_TRUE(fs::is_empty(world.foldersOnDrive()));
}

TEST_P(WindowOnVolumes, SaysThatADriveHasNoRoom) {
    world.volumes->list[0].availableBytes = 1'000'000;
    auto& window = open();
    const auto photos = makePhotos();
    const auto before = pictureOf(world.folder.path());
    window.chooseFolder(photos);
    ASSERT_TRUE(window.waitUntil([&] { return window.isEnabled("moveButton"); }));
    window.click("moveButton");
    EXPECT_TRUE(window.waitForText("errorToast/toastText", "Need 5 MB but Backup has 1 MB."));
    EXPECT_FALSE(window.isShown("alertDialog"));
    EXPECT_EQ(pictureOf(world.folder.path()), before);
}

TEST_P(WindowOnVolumes, SaysThatADriveRanFullInTheMiddleAndLeavesNothingThere) {
    auto& window = open();
    const auto photos = makePhotos();
    makeFileOfSize(photos / "2026/Film.mov", 20'000'000);
    const auto before = pictureOf(photos);
    move(photos);
    EXPECT_TRUE(window.waitForText("job-Photos/transferStatus", "Failed"));
    EXPECT_TRUE(window.text("job-Photos/transferFailure").contains("No space left on device"));
    EXPECT_TRUE(window.waitForText("errorToast/toastText", "Completed with 1 failure."));
    EXPECT_FALSE(window.isShown("job-Photos/moveBackButton"));
    EXPECT_EQ(pictureOf(photos), before);
    EXPECT_FALSE(fs::exists(world.foldersOnDrive() / "Photos"));
}

TEST_P(WindowOnVolumes, SaysThatADriveBecameReadOnly) {
    auto& window = open();
    drive().remountReadOnly();
    const auto photos = makePhotos();
    const auto before = pictureOf(photos);
    move(photos);
    EXPECT_TRUE(window.waitForText("job-Photos/transferStatus", "Failed"));
    EXPECT_TRUE(window.text("job-Photos/transferFailure").contains("Read-only file system"))
        << window.text("job-Photos/transferFailure").toStdString();
    EXPECT_EQ(pictureOf(photos), before);
}

TEST_P(WindowOnVolumes, LeavesAFolderOnADriveThatBecameReadOnly) {
    auto& window = open();
    const auto photos = makePhotos();
    move(photos);
    ASSERT_TRUE(window.waitForText("infoToast/toastText", "Moved 1 item."));
    drive().remountReadOnly();
    window.click("job-Photos/moveBackButton");
    EXPECT_TRUE(window.waitUntilShown("errorToast"));
    EXPECT_TRUE(window.text("errorToast/toastText").contains("Read-only file system"))
        << window.text("errorToast/toastText").toStdString();
    EXPECT_FALSE(window.isShown("alertDialog")) << "what cannot come back is not asked for";
    EXPECT_TRUE(fs::is_symlink(photos));
    EXPECT_TRUE(window.waitUntilShown("job-Photos/moveBackButton")) << "it can be tried again";
}

}  // namespace

}  // namespace tarvik::test
