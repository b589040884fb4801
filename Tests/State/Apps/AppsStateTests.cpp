#include "Platform/Files/Files.h"
#include "Platform/Storage/SizingService.h"
#include "State/Apps/AppsStateTest.h"
#include "State/EventLoop.h"
#include "State/Threads/BusyThreads.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <memory>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

}  // namespace

TEST_F(AppsStateTest, AreNoneWhereThereAreNone) {
    appsTab().refreshApps();
    EXPECT_TRUE(appsTab().isScanningApps());
    settle();
    EXPECT_FALSE(appsTab().isScanningApps());
    EXPECT_EQ(appsTab().sizeTotal(), 0);
    EXPECT_THAT(appsTab().apps(), IsEmpty());
}

TEST_F(AppsStateTest, AreNoneAnyMoreWhenAllHaveGone) {
    app("Editor");
    appsTab().refreshApps();
    settle();
    ASSERT_EQ(appsTab().sizeTotal(), 1);
    fs::remove_all(applications);
    appsTab().refreshApps();
    settle();
    EXPECT_EQ(appsTab().sizeTotal(), 0);
    EXPECT_EQ(appsTab().sizeProgress(), 0);
    EXPECT_THAT(appsTab().apps(), IsEmpty());
}

TEST_F(AppsStateTest, OfOneSizeKeepTheirOrder) {
    for (int number = 10; number < 50; ++number) app("App " + std::to_string(number));
    appsTab().refreshApps();
    settle();
    const auto listed = names();
    ASSERT_THAT(listed, SizeIs(40));
    EXPECT_TRUE(std::is_sorted(listed.begin(), listed.end()));
}

TEST_F(AppsStateTest, AreListedByNameAndSortedBySizeWhenAllAreMeasured) {
    app("Big", 400'000);
    app("Small", 4096, 40'000);
    app("Tiny");
    BusyThreads busyThreads;
    appsTab().refreshApps();
    spinUntil([this] { return appsTab().sizeTotal() == 3; });
    EXPECT_EQ(appsTab().sizeProgress(), 0);
    EXPECT_THAT(names(), ElementsAre("Big", "Small", "Tiny"));
    EXPECT_TRUE(appsTab().apps()[0].sizesPending);
    EXPECT_EQ(appsTab().apps()[0].entry.appSize, 0);
    busyThreads.end();
    settle();
    EXPECT_EQ(appsTab().sizeProgress(), 3);
    EXPECT_THAT(names(), ElementsAre("Big", "Small", "Tiny"));
    EXPECT_FALSE(appsTab().apps()[0].sizesPending);
    EXPECT_EQ(appsTab().apps()[0].entry.appSize, SizingService::size(world.host, applications / "Big.app"));
    EXPECT_GE(appsTab().apps()[1].entry.dataSize, 40'000);

    makeFileOfSize(applications / "Tiny.app/Contents/more", 800'000);
    appsTab().refreshApps();
    settle();
    EXPECT_THAT(names(), ElementsAre("Tiny", "Big", "Small"));
}

TEST_F(AppsStateTest, KeepTheirSizesUntilTheyAreMeasuredAnew) {
    app("Editor", 100'000);
    appsTab().refreshApps();
    settle();
    const auto before = appsTab().apps()[0].entry.appSize;
    BusyThreads busyThreads;
    appsTab().refreshApps();
    spinUntil([this] { return appsTab().apps()[0].sizesPending; });
    EXPECT_EQ(appsTab().apps()[0].entry.appSize, before);
    busyThreads.end();
    settle();
}

TEST_F(AppsStateTest, OfOneIdentifierAreMeasuredEach) {
    makeBundle(applications / "One.app", {{"CFBundleIdentifier", "org.example.same"}});
    makeBundle(applications / "Two.app", {{"CFBundleIdentifier", "org.example.same"}});
    appsTab().refreshApps();
    settle();
    ASSERT_THAT(appsTab().apps(), SizeIs(2));
    EXPECT_FALSE(appsTab().apps()[0].sizesPending);
    EXPECT_FALSE(appsTab().apps()[1].sizesPending);
}

TEST_F(AppsStateTest, AreTickedAndCountedByWhatAMoveWouldTake) {
    const auto editor = app("Editor", 100'000, 50'000);
    const auto player = app("Player", 4096, 30'000);
    begin();
    move({player});
    select({editor, player});
    EXPECT_EQ(appsTab().selectedMovableCount(), 1);
    EXPECT_EQ(appsTab().selectedRestorableCount(), 1);
    const auto size = [&](const fs::path& path) { return SizingService::size(world.host, path); };
    const fs::path caches = world.home / "Library/Caches";
    const std::int64_t data = size(caches / "Editor") + size(caches / "Player");
    EXPECT_EQ(appsTab().selectedTotalBytes(), size(editor) + data) << "an application on a drive counts with its data";
    appsTab().setIncludeAppData(false);
    EXPECT_EQ(appsTab().selectedTotalBytes(), size(editor));
    appsTab().clearSelection();
    EXPECT_EQ(appsTab().selectedTotalBytes(), 0);
    EXPECT_FALSE(appsTab().apps()[0].isSelected);
}

TEST_F(AppsStateTest, StayTickedAndOpenWhenTheyAreListedAnew) {
    const auto editor = app("Editor");
    app("Player");
    begin();
    select({editor});
    appsTab().setAppExpanded(FilePath(editor), true);
    appsTab().refreshApps();
    settle();
    ASSERT_THAT(appsTab().apps(), SizeIs(2));
    for (const AppRow& row : appsTab().apps()) {
        EXPECT_EQ(row.isSelected, row.entry.bundlePath == editor);
        EXPECT_EQ(row.isExpanded, row.entry.bundlePath == editor);
    }
    EXPECT_EQ(appsTab().selectedMovableCount(), 1);
}

TEST_F(AppsStateTest, TellOfTheTotalOfTickedOnesWhenTheyAreMeasured) {
    const auto editor = app("Editor");
    begin();
    select({editor});
    std::int64_t told = 0;
    QObject::connect(&appsTab(), &AppsState::selectedTotalChanged, state.get(),
                     [&] { told = appsTab().selectedTotalBytes(); });
    makeFileOfSize(editor / "Contents/more", 800'000);
    appsTab().refreshApps();
    settle();
    EXPECT_EQ(told, SizingService::size(world.host, editor));
}

TEST_F(AppsStateTest, AreRefusedToMoveWithoutADriveOrASelection) {
    const auto editor = app("Editor");
    appsTab().refreshApps();
    settle();
    appsTab().confirmAndMove();
    settle();
    EXPECT_EQ(state->lastError(), "Select a target drive first.");
    begin();
    appsTab().confirmAndMove();
    settle();
    EXPECT_EQ(state->lastError(), "Select at least one app.");
    move({editor});
    move({editor});
    EXPECT_EQ(state->lastError(), "Selected apps are already moved. Use Move Back.");
    EXPECT_THAT(dialogs.asked, SizeIs(1));
}

TEST_F(AppsStateTest, AreRefusedToMoveToADriveThatIsTooSmallByNow) {
    const auto editor = app("Editor", 2'000'000);
    begin();
    volumes->set({backup(1'000'000)});
    move({editor});
    EXPECT_THAT(state->lastError().toStdString(), testing::MatchesRegex("Need 2(\\.[0-9])? MB but Backup has 1 MB\\."));
    EXPECT_THAT(dialogs.asked, IsEmpty());
    EXPECT_TRUE(Files::isFolder(editor));
}

TEST_F(AppsStateTest, MoveWithTheirDataOnceTheUserHasAgreed) {
    const auto editor = app("Editor", 4096, 4096);
    begin();
    move({editor});
    ASSERT_THAT(dialogs.asked, SizeIs(1));
    EXPECT_EQ(dialogs.asked[0].title, "Move 1 item to Backup?");
    EXPECT_THAT(dialogs.asked[0].text, HasSubstr((world.drive / "ExternalTarvik/Apps/.").native()));
    EXPECT_THAT(dialogs.asked[0].text, Not(HasSubstr("warnings")));
    EXPECT_EQ(Files::linkText(editor), onDrive("Editor"));
    EXPECT_TRUE(Files::isSymbolicLink(world.home / "Library/Caches/Editor"));
    EXPECT_EQ(state->lastInfo(), "Moved 2 items.");
    EXPECT_THAT(appsTab().selectedAppIDs(), IsEmpty());
    EXPECT_TRUE(appsTab().apps()[0].entry.isAlreadySymlinked);
}

TEST_F(AppsStateTest, StayWhenTheUserSaysNo) {
    const auto editor = app("Editor");
    begin();
    dialogs.answers = {1};
    move({editor});
    EXPECT_TRUE(Files::isFolder(editor));
    EXPECT_THAT(state->jobs(), IsEmpty());
    EXPECT_EQ(state->lastError(), "");
    EXPECT_THAT(appsTab().selectedAppIDs(), SizeIs(1));
}

TEST_F(AppsStateTest, WarnOfRiskyOnes) {
    const auto store = app("Store");
    makeFile(store / "Contents/_MASReceipt/receipt");
    begin();
    move({store});
    EXPECT_THAT(dialogs.asked.at(0).text, HasSubstr("\n\n⚠ 1 item has warnings: Store"));
}

TEST_F(AppsStateTest, ThatRunAreAskedAbout) {
    const auto editor = app("Editor");
    const auto player = app("Player");
    world.applications->list = {{.process = 1, .bundlePath = editor}};
    begin();
    dialogs.answers = {0, 1};
    move({editor, player});
    ASSERT_THAT(dialogs.asked, SizeIs(2));
    EXPECT_EQ(dialogs.asked[1].title, "1 selected app is running");
    EXPECT_TRUE(Files::isFolder(player));
    EXPECT_THAT(world.applications->terminated, IsEmpty());

    dialogs.answers = {0, 2};
    appsTab().confirmAndMove();
    settle();
    EXPECT_EQ(state->lastError(), "Completed with 1 failure.");
    EXPECT_THAT(world.applications->terminated, IsEmpty());
    EXPECT_TRUE(Files::isFolder(editor));
    EXPECT_TRUE(Files::isSymbolicLink(player)) << "the other jobs still run";

    world.applications->quitsWhenAsked = true;
    move({editor});
    EXPECT_THAT(world.applications->terminated, SizeIs(1));
    EXPECT_TRUE(Files::isSymbolicLink(editor));
}

TEST_F(AppsStateTest, ThatWillNotQuitStayAndTheOthersMove) {
    const auto editor = app("Editor");
    const auto player = app("Player");
    world.applications->list = {{.process = 1, .bundlePath = editor}};
    world.applications->quitsWhenAsked = false;
    begin();
    dialogs.answers = {0, 0};
    move({editor, player});
    EXPECT_THAT(world.applications->terminated, SizeIs(1));
    EXPECT_EQ(statusOf(0), JobStatus::failed("App is running: Editor.app. Quit it first, or pass --quit-running."));
    EXPECT_EQ(statusOf(1), JobStatus::done());
    EXPECT_EQ(state->lastError(), "Completed with 1 failure.");
    EXPECT_TRUE(Files::isFolder(editor));
    EXPECT_TRUE(Files::isSymbolicLink(player));
}

/// The state of a machine whose snapshot tool says what a test wants.
class AppsStateSnapshots : public AppsStateTest {
protected:
    void beginWithTool(const std::string& script) {
        world.host.tools.tmutil = world.tool("tmutil", script);
        state = std::make_unique<AppState>(world.host, dialogs);
        QObject::connect(state.get(), &AppState::lastInfoChanged, state.get(),
                         [this] { infos.push_back(state->lastInfo().toStdString()); });
        begin();
    }

    std::vector<std::string> infos;
};

TEST_F(AppsStateSnapshots, AreTakenBeforeAMove) {
    const auto editor = app("Editor");
    beginWithTool("echo 'Created local snapshot with date: 2026-11-15-174543'");
    move({editor});
    EXPECT_THAT(infos, ElementsAre("APFS snapshot: com.apple.TimeMachine.2026-11-15-174543.local", "Moved 1 item."));
}

TEST_F(AppsStateSnapshots, WithoutANameAreNotSpokenOf) {
    const auto editor = app("Editor");
    const auto player = app("Player");
    beginWithTool("echo 'Done.'");
    move({editor});
    EXPECT_THAT(infos, ElementsAre("Moved 1 item."));
    beginWithTool("echo 'Created local snapshot with date: 2026-11-15-174543'; exit 1");
    move({player});
    EXPECT_THAT(infos, ElementsAre("Moved 1 item.", "Moved 1 item."));
}

TEST_F(AppsStateSnapshots, StayWhenTheMoveIsGivenUp) {
    const auto editor = app("Editor");
    world.applications->list = {{.process = 1, .bundlePath = editor}};
    dialogs.answers = {0, 1};
    beginWithTool("echo 'Created local snapshot with date: 2026-11-15-174543'");
    move({editor});
    EXPECT_TRUE(Files::isFolder(editor));
    EXPECT_EQ(state->lastInfo(), "APFS snapshot: com.apple.TimeMachine.2026-11-15-174543.local");
    EXPECT_THAT(state->jobs(), IsEmpty());
}

TEST_F(AppsStateTest, ThatAreLinksByNowHaveNothingToMove) {
    const auto editor = app("Editor");
    begin();
    fs::create_directories(onDrive("Editor").parent_path());
    fs::rename(editor, onDrive("Editor"));
    makeLink(editor, onDrive("Editor"));
    move({editor});
    EXPECT_EQ(state->lastError(), "Everything selected is already symlinked.");
    EXPECT_THAT(dialogs.asked, IsEmpty());
}

TEST_F(AppsStateTest, ThatOnlyFitOneByOneAreRefusedTogether) {
    const auto editor = app("Editor", 600'000);
    const auto player = app("Player", 600'000);
    volumes->set({backup(1'000'000)});
    begin();
    move({editor, player});
    EXPECT_THAT(state->lastError().toStdString(), testing::StartsWith("Need 1.2 MB but Backup has "));
    EXPECT_THAT(dialogs.asked, IsEmpty());
    EXPECT_TRUE(Files::isFolder(editor));
    EXPECT_TRUE(Files::isFolder(player));
}

TEST_F(AppsStateTest, SayWhenTheirDriveHasGoneBeforeTheyWereAskedAbout) {
    const auto editor = app("Editor");
    begin();
    volumes->set({});
    fs::rename(world.drive, world.folder / "unplugged");
    move({editor});
    EXPECT_EQ(dialogs.asked.at(0).title, "Move 1 item to Backup?");
    EXPECT_EQ(statusOf(0), JobStatus::failed("Target drive disconnected"));
    EXPECT_TRUE(Files::isFolder(editor));
}

/// A Trash that takes an item only when it may.
class WaitingTrash : public TrashCan {
public:
    fs::path moveToTrash(const fs::path& item) const override {
        m_begun.set_value();
        m_mayGoOn.get_future().wait();
        fs::remove_all(item);
        return item;
    }
    bool hasBegun() const { return m_hasBegun.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }
    void goOn() const { m_mayGoOn.set_value(); }

private:
    mutable std::promise<void> m_begun;
    mutable std::promise<void> m_mayGoOn;
    std::future<void> m_hasBegun = m_begun.get_future();
};

TEST_F(AppsStateTest, KeepTheWindowOpenWhileTheirDataGoesToTheTrash) {
    const auto editor = app("Editor", 4096, 4096);
    const auto trash = std::make_shared<const WaitingTrash>();
    world.host.trash = trash;
    state = std::make_unique<AppState>(world.host, dialogs);
    begin();
    CheckedPaths checked;
    checked.check(world.home / "Library/Caches/Editor", 4096);
    appsTab().setCheckedDataPaths(checked);
    appsTab().moveCheckedDataToTrash(FilePath(editor));
    EXPECT_TRUE(state->isBusy());
    spinUntil([&] { return trash->hasBegun(); });
    bool isReady = false;
    QObject::connect(state.get(), &AppState::readyToClose, [&] { isReady = true; });
    const bool mayClose = state->mayClose();
    const bool wasReadyAtOnce = isReady;
    trash->goOn();
    EXPECT_FALSE(mayClose);
    EXPECT_FALSE(wasReadyAtOnce);
    ASSERT_THAT(dialogs.asked, SizeIs(2));
    EXPECT_EQ(dialogs.asked[1].title, "Quit while data is being moved to the Trash?");
    spinUntil([&] { return isReady; });
    EXPECT_FALSE(Files::exists(world.home / "Library/Caches/Editor"));
    settle();
}

TEST_F(AppsStateTest, NeedATickToComeBack) {
    app("Editor");
    begin();
    appsTab().restoreSelectedApps();
    settle();
    EXPECT_EQ(state->lastError(), "Select at least one previously moved app.");
}

}  // namespace tarvik::test
