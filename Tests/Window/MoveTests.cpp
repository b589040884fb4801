#include "Support/RealVolume.h"
#include "Window/WindowTest.h"

#include <optional>

namespace tarvik::test {

namespace {

class Move : public WindowTest {};

TEST_F(Move, AsksAndThenMovesAFolder) {
    auto& window = open();
    const auto photos = makePhotos();
    const auto before = pictureOf(photos);
    window.chooseFolder(photos);
    EXPECT_TRUE(window.waitUntil([&] { return window.isEnabled("moveButton"); }));
    window.click("moveButton");
    EXPECT_EQ(window.text("alertTitle"), "Move Photos to Backup?");
    window.click("alertButton-0");
    EXPECT_TRUE(window.waitForText("job-Photos/transferStatus", "Done"));
    EXPECT_TRUE(fs::is_symlink(photos));
    EXPECT_EQ(pictureOf(world.foldersOnDrive() / "Photos"), before);
}

TEST_F(Move, SaysWhatItDid) {
    auto& window = open();
    move(makePhotos());
    EXPECT_TRUE(window.waitForText("infoToast/toastText", "Moved 1 item."));
    EXPECT_EQ(window.text("job-Photos/transferFrom").toStdString(), (world.home / "Photos").native());
    EXPECT_EQ(window.text("job-Photos/transferTo").toStdString(), (world.foldersOnDrive() / "Photos").native());
    EXPECT_FALSE(window.isShown("job-Photos/transferBar"));
    EXPECT_EQ(window.text("jobsSummary"), "Moved 1 item.");
    EXPECT_EQ(window.text("jobsTitle"), "Last run");
}

TEST_F(Move, ChangesNothingWhenItIsCancelled) {
    auto& window = open();
    const auto photos = makePhotos();
    const auto before = pictureOf(world.home);
    window.chooseFolder(photos);
    EXPECT_TRUE(window.waitUntil([&] { return window.isEnabled("moveButton"); }));
    window.click("moveButton");
    window.click("alertButton-1");
    EXPECT_TRUE(window.waitUntilHidden("alertDialog"));
    EXPECT_EQ(pictureOf(world.home), before);
    EXPECT_TRUE(fs::is_empty(backup));
    EXPECT_FALSE(window.isShown("jobsPanel"));
}

TEST_F(Move, ShowsHowFarItIs) {
    holdCopies();
    auto& window = open(small);
    startMove(makePhotos());
    EXPECT_TRUE(window.waitForText("job-Photos/transferBytes", "3 MB of 5 MB"));
    EXPECT_EQ(window.text("jobsTitle"), "Moving");
    EXPECT_EQ(window.text("job-Photos/transferStatus"), "Copying");
    EXPECT_NEAR(window.item("job-Photos/transferBar").property("value").toDouble(), 0.6, 0.01);
    EXPECT_EQ(window.text("sourceHint"), "A move is under way.");
    EXPECT_FALSE(window.isEnabled("moveButton"));
    letCopyEnd();
    EXPECT_TRUE(window.waitForText("job-Photos/transferStatus", "Done"));
}

TEST_F(Move, ShowsAFailureInFull) {
    world.withDitto(
        "echo 'ditto: Lake.raw: Input/output error, and then a long story about the cable of the drive, "
        "which went on for a second line of the row' >&2; exit 1");
    auto& window = open(small);
    const auto photos = makePhotos();
    move(photos);
    EXPECT_EQ(window.text("job-Photos/transferStatus"), "Failed");
    EXPECT_TRUE(window.text("job-Photos/transferFailure").contains("a second line of the row"));
    EXPECT_FALSE(window.item("job-Photos/transferFailure").property("truncated").toBool());
    EXPECT_EQ(window.text("jobsSummary"), "Completed with 1 failure.");
    EXPECT_EQ(window.text("errorToast/toastText"), "Completed with 1 failure.");
    EXPECT_FALSE(window.isShown("job-Photos/moveBackButton"));
    EXPECT_FALSE(fs::is_symlink(photos));
}

TEST_F(Move, IsClosedInThePanelWhenItIsOver) {
    holdCopies();
    auto& window = open();
    startMove(makePhotos());
    EXPECT_TRUE(window.waitForText("job-Photos/transferBytes", "3 MB of 5 MB"));
    EXPECT_FALSE(window.isShown("closeRunButton"));
    EXPECT_EQ(window.text("jobsCurrent"), "Photos");
    letCopyEnd();
    EXPECT_TRUE(window.waitUntilShown("closeRunButton"));
    EXPECT_EQ(window.text("jobsCurrent"), "");
    window.click("closeRunButton");
    EXPECT_TRUE(window.waitUntilHidden("jobsPanel"));
    move(makePhotos("More"));
    EXPECT_TRUE(window.isShown("job-More"));
    EXPECT_FALSE(window.isShown("job-Photos"));
}

TEST_F(Move, RefusesInAToastThatGoes) {
    auto& window = open();
    window.item("rootView").setProperty("toastDuration", 3'600'000);
    const auto photos = makePhotos();
    window.chooseFolder(photos);
    EXPECT_TRUE(window.waitUntil([&] { return window.isEnabled("moveButton"); }));
    fs::remove_all(photos);
    window.click("moveButton");
    EXPECT_TRUE(window.waitForText("errorToast/toastText", "Source folder doesn't exist."));
    EXPECT_FALSE(window.isShown("jobsPanel"));
    QMetaObject::invokeMethod(window.item("errorToast").findChild<QObject*>("toastTimer"), "triggered");
    EXPECT_TRUE(window.waitUntilHidden("errorToast"));
    EXPECT_EQ(window.state().lastError(), "");
}

TEST_F(Move, LeavesTheSourceFreeForTheNextFolder) {
    auto& window = open();
    move(makePhotos());
    EXPECT_TRUE(window.waitForText("sourceName", "No folder selected"));
    EXPECT_TRUE(window.isShown("job-Photos/moveBackButton"));
    EXPECT_FALSE(window.isShown("sourceMoveBackButton")) << "the way back is offered once";
}

TEST_F(Move, KeepsTheSourceWhenItFails) {
    world.withDitto("exit 1");
    auto& window = open();
    move(makePhotos());
    EXPECT_TRUE(window.waitUntil([&] { return window.isEnabled("moveButton"); }));
    EXPECT_EQ(window.text("sourceName"), "Photos");
}

TEST_F(Move, ShowsTheFolderAsALinkAfterwards) {
    auto& window = open();
    const auto photos = makePhotos();
    move(photos);
    window.chooseFolder(photos);
    EXPECT_TRUE(window.waitForText(
        "sourceLink", "This is a link to " + QString::fromStdString((world.foldersOnDrive() / "Photos").native())));
    EXPECT_FALSE(window.isShown("moveButton"));
    EXPECT_TRUE(window.isShown("sourceMoveBackButton"));
}

class RefusedMove : public WindowTest {
protected:
    /// The sentence in the toast when `folder` shall move to "Backup".
    std::string refusalOf(const fs::path& folder) {
        auto& window = opened ? *opened : open();
        const auto before = pictureOf(world.folder.path());
        window.state().clearError();
        window.chooseFolder(folder);
        EXPECT_TRUE(window.waitUntil([&] { return window.isEnabled("moveButton"); }));
        window.click("moveButton");
        EXPECT_TRUE(window.waitUntilShown("errorToast"));
        const auto sentence = window.text("errorToast/toastText").toStdString();
        EXPECT_FALSE(window.isShown("alertDialog"));
        EXPECT_EQ(pictureOf(world.folder.path()), before);
        return sentence;
    }
};

TEST_F(RefusedMove, OfTheHomeAndWhatHoldsIt) {
    EXPECT_EQ(refusalOf(world.home), "The home folder can't be moved.");
    EXPECT_EQ(refusalOf(world.home.parent_path()),
              world.home.parent_path().native() + " holds the home folder and can't be moved.");
    EXPECT_EQ(refusalOf(world.folder.path()),
              world.folder.path().native() + " holds the home folder and can't be moved.");
}

TEST_F(RefusedMove, OfFoldersOfTheSystem) {
    makeFolder(world.folder / "Library");
    EXPECT_EQ(refusalOf(world.folder / "Library"),
              (world.folder / "Library").native() + " belongs to the system and can't be moved.");
}

TEST_F(RefusedMove, OfTheDriveWhatHoldsItAndWhatLiesOnIt) {
    makeFolder(backup / "Stuff");
    EXPECT_EQ(refusalOf(backup), "Backup is the target drive itself and can't be moved to it.");
    EXPECT_EQ(refusalOf(backup / "Stuff"), "Stuff is on Backup already.");
    const fs::path stick = world.home / "mounts/stick";
    makeFolder(stick);
    world.volumes->list[0].mountPath = stick;
    opened.reset();
    EXPECT_EQ(refusalOf(world.home / "mounts"),
              (world.home / "mounts").native() + " holds the target drive Backup and can't be moved to it.");
}

TEST_F(RefusedMove, OfTheWholeDisk) {
    auto& window = open();
    window.foldersState().moveArbitraryFolder(FilePath("/"));
    EXPECT_TRUE(window.waitForText("errorToast/toastText", "/ holds the home folder and can't be moved."));
}

class MoveBack : public WindowTest {};

TEST_F(MoveBack, BringsAFolderBackWhoseNameIsNoText) {
    auto& window = open();
    const auto folder = makePhotos(
        "Gr\xFC\xDF"
        "e");
    const auto other = makePhotos(
        "Gr\xFD\xDF"
        "e");
    const auto before = pictureOf(folder);
    move(folder);
    EXPECT_TRUE(fs::is_symlink(folder));
    EXPECT_FALSE(fs::is_symlink(other)) << "it looks the same on the screen";
    EXPECT_EQ(pictureOf(world.foldersOnDrive() / folder.filename()), before);
    window.click(QStringLiteral("job-Gr\uFFFD\uFFFDe/moveBackButton"));
    window.click("alertButton-0");
    EXPECT_TRUE(window.waitForText("restoreRow/transferStatus", "Done"));
    EXPECT_FALSE(fs::is_symlink(folder));
    EXPECT_EQ(pictureOf(folder), before);
}

TEST_F(MoveBack, BringsAFolderBackFromTheJobsPanel) {
    auto& window = open();
    const auto photos = makePhotos();
    const auto before = pictureOf(photos);
    move(photos);
    window.click("job-Photos/moveBackButton");
    EXPECT_EQ(window.text("alertButton-0"), "Move Back");
    window.click("alertButton-0");
    EXPECT_TRUE(window.waitForText("restoreRow/transferStatus", "Done"));
    EXPECT_EQ(window.text("restoreRow/transferFrom").toStdString(), (world.foldersOnDrive() / "Photos").native());
    EXPECT_EQ(window.text("restoreRow/transferTo").toStdString(), photos.native());
    EXPECT_FALSE(window.isShown("restoreRow/transferBar"));
    EXPECT_FALSE(fs::is_symlink(photos));
    EXPECT_EQ(pictureOf(photos), before);
    EXPECT_TRUE(window.waitUntilHidden("job-Photos/moveBackButton")) << "There is no link any more.";
}

TEST_F(MoveBack, BringsAFolderBackFromTheSourceCard) {
    auto& window = open();
    const auto photos = makePhotos();
    move(photos);
    window.chooseFolder(photos);
    window.click("sourceMoveBackButton");
    window.click("alertButton-0");
    EXPECT_TRUE(window.waitUntil([&] { return !fs::is_symlink(photos) && fs::exists(photos); }));
    EXPECT_TRUE(window.waitUntilShown("moveButton"));
    EXPECT_FALSE(window.isShown("sourceLink"));
}

TEST_F(MoveBack, ChangesNothingWhenItIsCancelled) {
    auto& window = open();
    const auto photos = makePhotos();
    move(photos);
    window.click("job-Photos/moveBackButton");
    EXPECT_TRUE(window.waitUntilShown("alertDialog"));
    window.press(Qt::Key_Escape);
    EXPECT_TRUE(window.waitUntilHidden("alertDialog"));
    EXPECT_TRUE(fs::is_symlink(photos));
    EXPECT_FALSE(window.isShown("restoreRow"));
}

/// A second volume, made before the window that shows it.
struct OtherVolume {
    OtherVolume() {
        if (!RealVolume::unavailableReason(RealVolume::Kind::memory))
            volume.emplace(RealVolume::memory(mounts.path(), 64'000'000));
    }

    TemporaryFolder mounts;
    std::optional<RealVolume> volume;
};

/// Moving back from another volume copies, and so it can be watched.
class MoveBackAcrossVolumes : private OtherVolume, public WindowTest {
protected:
    MoveBackAcrossVolumes() : WindowTest(volume ? volume->path() : mounts.path()) {}

    void SetUp() override { TARVIK_NEEDS_MEMORY_VOLUMES(); }

    /// A moved folder on its way back, half there.
    WindowUnderTest& startMoveBack() {
        auto& window = open(small);
        move(makePhotos());
        holdCopies();
        window.click("job-Photos/moveBackButton");
        window.click("alertButton-0");
        EXPECT_TRUE(window.waitUntilShown("restoreRow"));
        return window;
    }
};

TEST_F(MoveBackAcrossVolumes, ShowsHowFarItIs) {
    auto& window = startMoveBack();
    EXPECT_TRUE(window.waitForText("restoreRow/transferBytes", "3 MB of 5 MB"));
    EXPECT_EQ(window.text("jobsTitle"), "Moving back");
    EXPECT_EQ(window.text("restoreRow/transferLabel"), "Photos");
    EXPECT_NEAR(window.item("restoreRow/transferBar").property("value").toDouble(), 0.6, 0.01);
    EXPECT_FALSE(window.isShown("job-Photos/moveBackButton"));
    EXPECT_EQ(window.text("sourceHint"), "A folder is being moved back.");
    window.savePicture("Restoring-900");
    window.resize(large);
    window.savePicture("Restoring-1400");
    letCopyEnd();
    EXPECT_TRUE(window.waitForText("restoreRow/transferStatus", "Done"));
    EXPECT_FALSE(fs::is_symlink(world.home / "Photos"));
}

TEST_F(MoveBackAcrossVolumes, ShowsAFailureInFull) {
    auto& window = open(small);
    move(makePhotos());
    world.withDitto("echo 'ditto: no space left' >&2; exit 1");
    window.click("job-Photos/moveBackButton");
    window.click("alertButton-0");
    EXPECT_TRUE(window.waitForText("restoreRow/transferStatus", "Failed"));
    EXPECT_EQ(window.text("restoreRow/transferFailure"), window.state().restore().outcome());
    EXPECT_TRUE(window.text("restoreRow/transferFailure").contains("no space left"));
    EXPECT_TRUE(fs::is_symlink(world.home / "Photos"));
}

}  // namespace

}  // namespace tarvik::test
