#include "Platform/Files.h"
#include "Platform/SizingService.h"
#include "State/BusyThreads.h"
#include "State/EventLoop.h"
#include "State/StateWorld.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class AppStateApps : public StateWorld {
protected:
    /// An application of about that many bytes, with as many in its cache.
    fs::path app(const std::string& name, std::size_t bytes = 4096, std::size_t cacheBytes = 0) {
        const fs::path bundle = applications / (name + ".app");
        makeBundle(bundle, {{"CFBundleIdentifier", "org.example." + name}});
        makeFileOfSize(bundle / "Contents/Resources/filling", bytes);
        if (cacheBytes > 0) makeFileOfSize(world.home / "Library/Caches" / name / "cache", cacheBytes);
        return bundle;
    }
    void select(const std::vector<fs::path>& bundles) {
        for (const fs::path& bundle : bundles) state->setAppSelected(FilePath(bundle), true);
    }
    void move(const std::vector<fs::path>& bundles) {
        select(bundles);
        state->confirmAndMove();
        settle();
    }
    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const AppRow& row : state->apps()) names.push_back(row.entry.name);
        return names;
    }
    fs::path onDrive(const std::string& name) const { return world.drive / "ExternalTarvik/Apps" / (name + ".app"); }

    fs::path applications = world.folder / "Applications";
};

}  // namespace

TEST_F(AppStateApps, AreNoneWhereThereAreNone) {
    state->refreshApps();
    EXPECT_TRUE(state->isScanningApps());
    settle();
    EXPECT_FALSE(state->isScanningApps());
    EXPECT_EQ(state->sizeTotal(), 0);
    EXPECT_THAT(state->apps(), IsEmpty());
}

TEST_F(AppStateApps, AreNoneAnyMoreWhenAllHaveGone) {
    app("Editor");
    state->refreshApps();
    settle();
    ASSERT_EQ(state->sizeTotal(), 1);
    fs::remove_all(applications);
    state->refreshApps();
    settle();
    EXPECT_EQ(state->sizeTotal(), 0);
    EXPECT_EQ(state->sizeProgress(), 0);
    EXPECT_THAT(state->apps(), IsEmpty());
}

TEST_F(AppStateApps, OfOneSizeKeepTheirOrder) {
    for (int number = 10; number < 50; ++number) app("App " + std::to_string(number));
    state->refreshApps();
    settle();
    const auto listed = names();
    ASSERT_THAT(listed, SizeIs(40));
    EXPECT_TRUE(std::is_sorted(listed.begin(), listed.end()));
}

TEST_F(AppStateApps, AreListedByNameAndSortedBySizeWhenAllAreMeasured) {
    app("Big", 400'000);
    app("Small", 4096, 40'000);
    app("Tiny");
    BusyThreads busyThreads;
    state->refreshApps();
    spinUntil([this] { return state->sizeTotal() == 3; });
    EXPECT_EQ(state->sizeProgress(), 0);
    EXPECT_THAT(names(), ElementsAre("Big", "Small", "Tiny"));
    EXPECT_TRUE(state->apps()[0].sizesPending);
    EXPECT_EQ(state->apps()[0].entry.appSize, 0);
    busyThreads.end();
    settle();
    EXPECT_EQ(state->sizeProgress(), 3);
    EXPECT_THAT(names(), ElementsAre("Big", "Small", "Tiny"));
    EXPECT_FALSE(state->apps()[0].sizesPending);
    EXPECT_EQ(state->apps()[0].entry.appSize, SizingService::size(world.host, applications / "Big.app"));
    EXPECT_GE(state->apps()[1].entry.dataSize, 40'000);

    makeFileOfSize(applications / "Tiny.app/Contents/more", 800'000);
    state->refreshApps();
    settle();
    EXPECT_THAT(names(), ElementsAre("Tiny", "Big", "Small"));
}

TEST_F(AppStateApps, KeepTheirSizesUntilTheyAreMeasuredAnew) {
    app("Editor", 100'000);
    state->refreshApps();
    settle();
    const auto before = state->apps()[0].entry.appSize;
    BusyThreads busyThreads;
    state->refreshApps();
    spinUntil([this] { return state->apps()[0].sizesPending; });
    EXPECT_EQ(state->apps()[0].entry.appSize, before);
    busyThreads.end();
    settle();
}

TEST_F(AppStateApps, OfOneIdentifierAreMeasuredEach) {
    makeBundle(applications / "One.app", {{"CFBundleIdentifier", "org.example.same"}});
    makeBundle(applications / "Two.app", {{"CFBundleIdentifier", "org.example.same"}});
    state->refreshApps();
    settle();
    ASSERT_THAT(state->apps(), SizeIs(2));
    EXPECT_FALSE(state->apps()[0].sizesPending);
    EXPECT_FALSE(state->apps()[1].sizesPending);
}

TEST_F(AppStateApps, AreTickedAndCountedByWhatAMoveWouldTake) {
    const auto editor = app("Editor", 100'000, 50'000);
    const auto player = app("Player", 4096, 30'000);
    begin();
    move({player});
    select({editor, player});
    EXPECT_EQ(state->selectedMovableCount(), 1);
    EXPECT_EQ(state->selectedRestorableCount(), 1);
    const auto size = [&](const fs::path& path) { return SizingService::size(world.host, path); };
    const fs::path caches = world.home / "Library/Caches";
    const std::int64_t data = size(caches / "Editor") + size(caches / "Player");
    EXPECT_EQ(state->selectedTotalBytes(), size(editor) + data) << "an application on a drive counts with its data";
    state->setIncludeAppData(false);
    EXPECT_EQ(state->selectedTotalBytes(), size(editor));
    state->clearSelection();
    EXPECT_EQ(state->selectedTotalBytes(), 0);
    EXPECT_FALSE(state->apps()[0].isSelected);
}

TEST_F(AppStateApps, StayTickedAndOpenWhenTheyAreListedAnew) {
    const auto editor = app("Editor");
    app("Player");
    begin();
    select({editor});
    state->setAppExpanded(FilePath(editor), true);
    state->refreshApps();
    settle();
    ASSERT_THAT(state->apps(), SizeIs(2));
    for (const AppRow& row : state->apps()) {
        EXPECT_EQ(row.isSelected, row.entry.bundlePath == editor);
        EXPECT_EQ(row.isExpanded, row.entry.bundlePath == editor);
    }
    EXPECT_EQ(state->selectedMovableCount(), 1);
}

TEST_F(AppStateApps, TellOfTheTotalOfTickedOnesWhenTheyAreMeasured) {
    const auto editor = app("Editor");
    begin();
    select({editor});
    std::int64_t told = 0;
    QObject::connect(state.get(), &AppState::selectedTotalChanged, state.get(),
                     [&] { told = state->selectedTotalBytes(); });
    makeFileOfSize(editor / "Contents/more", 800'000);
    state->refreshApps();
    settle();
    EXPECT_EQ(told, SizingService::size(world.host, editor));
}

TEST_F(AppStateApps, AreRefusedToMoveWithoutADriveOrASelection) {
    const auto editor = app("Editor");
    state->refreshApps();
    settle();
    state->confirmAndMove();
    settle();
    EXPECT_EQ(state->lastError(), "Select a target drive first.");
    begin();
    state->confirmAndMove();
    settle();
    EXPECT_EQ(state->lastError(), "Select at least one app.");
    move({editor});
    move({editor});
    EXPECT_EQ(state->lastError(), "Selected apps are already moved. Use Move Back.");
    EXPECT_THAT(dialogs.asked, SizeIs(1));
}

TEST_F(AppStateApps, AreRefusedToMoveToADriveThatIsTooSmallByNow) {
    const auto editor = app("Editor", 2'000'000);
    begin();
    volumes->set({backup(1'000'000)});
    move({editor});
    EXPECT_THAT(state->lastError().toStdString(), testing::MatchesRegex("Need 2(\\.[0-9])? MB but Backup has 1 MB\\."));
    EXPECT_THAT(dialogs.asked, IsEmpty());
    EXPECT_TRUE(Files::isFolder(editor));
}

TEST_F(AppStateApps, MoveWithTheirDataOnceTheUserHasAgreed) {
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
    EXPECT_THAT(state->selectedAppIDs(), IsEmpty());
    EXPECT_TRUE(state->apps()[0].entry.isAlreadySymlinked);
}

TEST_F(AppStateApps, StayWhenTheUserSaysNo) {
    const auto editor = app("Editor");
    begin();
    dialogs.answers = {1};
    move({editor});
    EXPECT_TRUE(Files::isFolder(editor));
    EXPECT_THAT(state->jobs(), IsEmpty());
    EXPECT_EQ(state->lastError(), "");
    EXPECT_THAT(state->selectedAppIDs(), SizeIs(1));
}

TEST_F(AppStateApps, WarnOfRiskyOnes) {
    const auto store = app("Store");
    makeFile(store / "Contents/_MASReceipt/receipt");
    begin();
    move({store});
    EXPECT_THAT(dialogs.asked.at(0).text, HasSubstr("\n\n⚠ 1 item has warnings: Store"));
}

TEST_F(AppStateApps, ThatRunAreAskedAbout) {
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
    state->confirmAndMove();
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

TEST_F(AppStateApps, ThatWillNotQuitStayAndTheOthersMove) {
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
class AppStateSnapshots : public AppStateApps {
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

TEST_F(AppStateSnapshots, AreTakenBeforeAMove) {
    const auto editor = app("Editor");
    beginWithTool("echo 'Created local snapshot with date: 2026-11-15-174543'");
    move({editor});
    EXPECT_THAT(infos, ElementsAre("APFS snapshot: com.apple.TimeMachine.2026-11-15-174543.local", "Moved 1 item."));
}

TEST_F(AppStateSnapshots, WithoutANameAreNotSpokenOf) {
    const auto editor = app("Editor");
    const auto player = app("Player");
    beginWithTool("echo 'Done.'");
    move({editor});
    EXPECT_THAT(infos, ElementsAre("Moved 1 item."));
    beginWithTool("echo 'Created local snapshot with date: 2026-11-15-174543'; exit 1");
    move({player});
    EXPECT_THAT(infos, ElementsAre("Moved 1 item.", "Moved 1 item."));
}

TEST_F(AppStateSnapshots, StayWhenTheMoveIsGivenUp) {
    const auto editor = app("Editor");
    world.applications->list = {{.process = 1, .bundlePath = editor}};
    dialogs.answers = {0, 1};
    beginWithTool("echo 'Created local snapshot with date: 2026-11-15-174543'");
    move({editor});
    EXPECT_TRUE(Files::isFolder(editor));
    EXPECT_EQ(state->lastInfo(), "APFS snapshot: com.apple.TimeMachine.2026-11-15-174543.local");
    EXPECT_THAT(state->jobs(), IsEmpty());
}

TEST_F(AppStateApps, ThatAreLinksByNowHaveNothingToMove) {
    const auto editor = app("Editor");
    begin();
    fs::create_directories(onDrive("Editor").parent_path());
    fs::rename(editor, onDrive("Editor"));
    makeLink(editor, onDrive("Editor"));
    move({editor});
    EXPECT_EQ(state->lastError(), "Everything selected is already symlinked.");
    EXPECT_THAT(dialogs.asked, IsEmpty());
}

TEST_F(AppStateApps, ThatOnlyFitOneByOneAreRefusedTogether) {
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

TEST_F(AppStateApps, SayWhenTheirDriveHasGoneBeforeTheyWereAskedAbout) {
    const auto editor = app("Editor");
    begin();
    volumes->set({});
    fs::rename(world.drive, world.folder / "unplugged");
    move({editor});
    EXPECT_EQ(dialogs.asked.at(0).title, "Move 1 item to Backup?");
    EXPECT_EQ(statusOf(0), JobStatus::failed("Target drive disconnected"));
    EXPECT_TRUE(Files::isFolder(editor));
}

TEST_F(AppStateApps, ComeBackOneByOne) {
    const auto editor = app("Editor");
    begin();
    move({editor});
    state->restoreApp(FilePath(editor));
    settle();
    EXPECT_EQ(dialogs.asked.back().title, "Move Editor.app back?");
    EXPECT_TRUE(Files::isFolder(editor));
    EXPECT_EQ(state->lastInfo(), "Restored Editor.app");
    EXPECT_FALSE(state->apps()[0].entry.isAlreadySymlinked);
    state->restoreApp(FilePath(editor));
    settle();
    EXPECT_EQ(state->lastError(), "No symlink found for Editor.");
}

TEST_F(AppStateApps, OfOneMovedFolderComeBackTogether) {
    const fs::path suite = world.drive / "ExternalTarvik/Apps/Suite";
    makeBundle(suite / "One.app");
    makeBundle(suite / "Two.app");
    makeFolder(applications);
    makeLink(applications / "Suite", suite);
    begin();
    ASSERT_THAT(state->apps(), SizeIs(2));
    select({applications / "Suite/One.app", applications / "Suite/Two.app"});
    state->restoreSelectedApps();
    settle();
    ASSERT_THAT(dialogs.asked, SizeIs(1));
    EXPECT_EQ(dialogs.asked[0].title, "Move 1 item back?");
    EXPECT_EQ(state->lastInfo(), "Moved 1 item back.");
    EXPECT_TRUE(Files::isFolder(applications / "Suite"));
    EXPECT_THAT(state->selectedAppIDs(), IsEmpty());
    EXPECT_THAT(state->jobs(), IsEmpty());
}

TEST_F(AppStateApps, OfAFolderWithLaunchersComeBackTogetherToo) {
    const fs::path suite = world.drive / "ExternalTarvik/Apps/Suite";
    makeBundle(suite / "Mixer.app", {{"CFBundleIdentifier", "org.example.Mixer"}});
    makeFolder(applications);
    makeLink(applications / "Suite", suite);
    makeLauncher(applications / "Mixer.app", suite / "Mixer.app");
    begin();
    ASSERT_THAT(state->apps(), SizeIs(2));
    for (const auto* first : {"Mixer.app", "Suite/Mixer.app"}) {
        select({applications / first});
        state->restoreSelectedApps();
        settle();
        EXPECT_EQ(dialogs.asked.back().title, "Move 1 item back?");
        EXPECT_EQ(state->lastInfo(), "Moved 1 item back.");
        EXPECT_TRUE(Files::isFolder(applications / "Suite/Mixer.app"));
        EXPECT_FALSE(Files::itemExists(applications / "Mixer.app"));
        fs::remove_all(world.trash->folder);
        fs::rename(applications / "Suite", suite);
        makeLink(applications / "Suite", suite);
        makeLauncher(applications / "Mixer.app", suite / "Mixer.app");
        state->refreshAll();
        settle();
    }
}

TEST_F(AppStateApps, ComeBackAlsoAfterOneThatCannot) {
    const auto editor = app("Editor");
    const auto player = app("Player");
    begin();
    move({editor, player});
    fs::remove_all(onDrive("Editor"));
    select({editor, player});
    state->restoreSelectedApps();
    settle();
    EXPECT_EQ(state->lastError(), "Move back completed with 1 failure.");
    EXPECT_EQ(state->restore().summary(), "Move back completed with 1 failure.");
    EXPECT_TRUE(Files::isSymbolicLink(editor));
    EXPECT_TRUE(Files::isFolder(player));
}

TEST_F(AppStateApps, ComeBackFromTheirLauncherToo) {
    makeBundle(onDrive("Editor"));
    makeLauncher(applications / "Editor.app", onDrive("Editor"));
    begin();
    state->restoreApp(FilePath(applications / "Editor.app"));
    settle();
    EXPECT_EQ(state->lastInfo(), "Restored Editor.app");
    EXPECT_FALSE(Files::exists(applications / "Editor.app/Contents/Resources/ExternalAppTarget.txt"));
    EXPECT_FALSE(Files::exists(onDrive("Editor")));
}

TEST_F(AppStateApps, AreAskedAboutWhenNoMoveHasLeftTheirLink) {
    const fs::path own = world.folder / "Elsewhere/Own.app";
    makeBundle(own);
    makeFolder(applications);
    makeLink(applications / "Own.app", own);
    begin();
    select({applications / "Own.app"});
    dialogs.answers = {1};
    state->restoreSelectedApps();
    settle();
    ASSERT_THAT(dialogs.asked, SizeIs(1));
    EXPECT_THAT(dialogs.asked[0].details, ElementsAre("Own.app is not a symlink that Tarvik has left."));
}

TEST_F(AppStateApps, NeedATickToComeBack) {
    app("Editor");
    begin();
    state->restoreSelectedApps();
    settle();
    EXPECT_EQ(state->lastError(), "Select at least one previously moved app.");
}

}  // namespace tarvik::test
