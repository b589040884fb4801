#include "Platform/Files/Files.h"
#include "Support/Bundles.h"
#include "Support/FailureOf.h"
#include "Support/OrdinaryUser.h"
#include "Support/Tree.h"
#include "UninstallRun/UninstallLock.h"
#include "UninstallRun/UninstallRunWorld.h"
#include "UninstallRun/UninstallSessionStore.h"
#include "UninstallRun/UninstallUndo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sys/stat.h>
#include <utility>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using State = UninstallUndo::Item::State;

constexpr const char* refused = "Its record names a place that no uninstall writes to.";

class UninstallUndoTest : public testing::Test {
protected:
    UninstallUndoTest() { world.addData(data); }

    std::vector<UninstallUndo::Item> putBack(const AppUninstallSession& session) {
        world.lines.clear();
        return UninstallUndo::putBack(world.host, session, world.reporter());
    }
    /// How it stands with the data alone.
    UninstallUndo::Item look(const AppUninstallSession& session) const {
        return UninstallUndo::look(world.host, session).back();
    }
    std::string reasonOf(const AppUninstallSession& session) const {
        const auto item = look(session);
        return item.state == State::stuck ? item.reason : "it is not stuck";
    }
    fs::path inTrash(const std::string& name) const { return world.home / ".Trash" / name; }
    /// The machine without the Trash and the records.
    std::string picture() const {
        return pictureOf(world.folder / "Applications") + pictureOf(world.home / "Library/Caches");
    }

    UninstallRunWorld world;
    const fs::path data = world.library("Caches/Foo");
};

}  // namespace

TEST_F(UninstallUndoTest, TakesAwayTheFoldersThatItMadeWhenTheLastCannotBeMade) {
    const fs::path preferences = world.library("Preferences");
    const fs::path file = preferences / "ByHost/org.example.Foo.0000.plist";
    makeFile(file);
    world.plan.candidates.push_back(world.candidate(file, UninstallCategory::preferences));
    const auto session = world.run();
    fs::remove_all(preferences);
    for (const auto& each : fs::recursive_directory_iterator(world.folder.path()))
        fs::permissions(each, fs::perms::all);
    {
        const OrdinaryUser user(world.folder.path());
        const auto before = ::umask(0777);  // Nothing can be made in the first one.
        const auto items = putBack(session);
        ::umask(before);
        EXPECT_EQ(items.back().state, State::stuck);
        EXPECT_THAT(items.back().reason, HasSubstr("ByHost"));
        EXPECT_EQ(items.front().state, State::back);
    }
    EXPECT_FALSE(Files::itemExists(preferences));
    EXPECT_EQ(putBack(session).back().state, State::back);
}

TEST_F(UninstallUndoTest, BringsBackThousandsOfItems) {
    constexpr int count = 5000;
    const fs::path byHost = world.library("Preferences/ByHost");
    makeFolder(byHost);
    for (int number = 0; number < count; ++number) {
        const fs::path path = byHost / ("org.example.Foo." + std::to_string(number) + ".plist");
        makeFile(path);
        world.plan.candidates.push_back(world.candidate(path, UninstallCategory::preferences));
    }
    const auto picture = [&] { return pictureOf(byHost) + pictureOf(world.home / "Library/Caches"); };
    const std::string before = picture();
    const auto session = world.run();
    EXPECT_EQ(session.goneCount(), count + 2);
    EXPECT_TRUE(Files::names(byHost).empty());
    const auto items = putBack(UninstallSessionStore::find(session.id, world.sessions()).value());
    EXPECT_TRUE(std::all_of(items.begin(), items.end(), [](const auto& item) { return item.state == State::back; }));
    EXPECT_EQ(picture(), before);
}

TEST_F(UninstallUndoTest, BringsEverythingBackAsItWas) {
    fs::permissions(data, fs::perms(0640));
    const std::string before = picture();
    const auto session = world.run();
    EXPECT_EQ(look(session).state, State::waiting);
    EXPECT_EQ(look(session).place, inTrash("Foo"));
    const auto waiting = UninstallUndo::look(world.host, session);
    const auto items = putBack(session);
    EXPECT_EQ(picture(), before);
    EXPECT_EQ(items, UninstallUndo::look(world.host, session));
    EXPECT_TRUE(items[0].state == State::back && items[1].state == State::back);
    EXPECT_EQ(UninstallUndo::summary(waiting, items), "Put back 2 items.");
    EXPECT_THAT(world.lines, ElementsAre("undo-start\t" + session.id, "put-back\tcaches\t" + data.native(),
                                         "put-back\texecutable\t" + world.bundle.native(), "undo-done\titems=2"));
    EXPECT_EQ(UninstallUndo::summary(items, putBack(session)), "Everything is back already.");
}

TEST_F(UninstallUndoTest, BringsBackWhatWasSetAsideAndLeavesNoEmptyStash) {
    world.refuseAllTrash();
    const std::string before = picture();
    const auto session = world.run();
    EXPECT_EQ(look(session).place.parent_path(), data.parent_path() / ".TarvikTrash");
    putBack(session);
    EXPECT_EQ(picture(), before);
}

TEST_F(UninstallUndoTest, FindsTheRightOneOfSeveralThatWereSetAside) {
    world.refuseAllTrash();
    const auto first = world.run();
    world.host.now = [earlier = world.host.now] { return earlier() + std::chrono::seconds(2); };
    makeBundle(world.bundle, {{"CFBundleIdentifier", "org.example.Foo"}});
    world.plan = world.planWith({});
    world.addData(data, "newer");
    const auto second = world.run();
    ASSERT_EQ(Files::names(data.parent_path() / ".TarvikTrash").size(), 2U);
    EXPECT_EQ(contentOf(look(first).place), "data");
    EXPECT_EQ(contentOf(look(second).place), "newer");
    // Without what the run has noted, the names alone tell.
    for (const auto& session : {first, second}) fs::remove(world.sessions() / session.id / "items.tsv");
    EXPECT_EQ(contentOf(look(first).place), "data");
    EXPECT_EQ(contentOf(look(second).place), "newer");
}

TEST_F(UninstallUndoTest, NeverPutsAnythingOverWhatStandsThere) {
    const auto session = world.run();
    makeFile(data, "new");
    const auto before = UninstallUndo::look(world.host, session);
    EXPECT_EQ(before[1].reason, "Something stands at its old place.");
    const auto after = putBack(session);
    EXPECT_EQ(contentOf(data), "new");
    EXPECT_EQ(contentOf(inTrash("Foo")), "data");
    EXPECT_EQ(after[0].state, State::back);
    EXPECT_EQ(after[1].state, State::stuck);
    EXPECT_EQ(UninstallUndo::summary(before, after), "Put back 1 item. 1 item could not come back.");
}

TEST_F(UninstallUndoTest, MakesMissingFoldersAgain) {
    const auto session = world.run();
    fs::remove_all(data.parent_path());
    putBack(session);
    EXPECT_EQ(contentOf(data), "data");
}

TEST_F(UninstallUndoTest, TellsOfAnEmptiedTrash) {
    const auto session = world.run();
    fs::remove(inTrash("Foo"));
    EXPECT_EQ(reasonOf(session), "It is not in the Trash any more.");
    makeFile(data, "new");
    EXPECT_EQ(reasonOf(session), "It is not in the Trash any more, and something else stands at its old place.");
    const auto after = putBack(session);
    EXPECT_EQ(after[0].state, State::back);
    EXPECT_EQ(contentOf(data), "new");
}

TEST_F(UninstallUndoTest, LeavesWhatIsNotWhatWasTrashed) {
    const auto session = world.run();
    fs::rename(inTrash("Foo"), world.home / "taken out");
    makeFile(inTrash("Foo"), "another one");
    EXPECT_EQ(reasonOf(session), inTrash("Foo").native() + " is not what was moved there.");
    putBack(session);
    EXPECT_FALSE(Files::itemExists(data));
    EXPECT_EQ(contentOf(inTrash("Foo")), "another one");
}

TEST_F(UninstallUndoTest, TakesItForBackWhereverItCameFrom) {
    const auto session = world.run();
    fs::rename(inTrash("Foo"), data);
    EXPECT_EQ(look(session).state, State::back);
    fs::remove(world.sessions() / session.id / "items.tsv");
    EXPECT_EQ(look(session).state, State::back);
}

TEST_F(UninstallUndoTest, TellsOfADriveThatIsAway) {
    const fs::path copy = world.drive / "ExternalTarvik/Apps/Bar.app";
    makeBundle(copy, {{"CFBundleIdentifier", "org.example.Bar"}});
    world.plan.candidates.push_back(world.candidate(copy, UninstallCategory::executable));
    const auto session = world.run();
    fs::rename(world.drive, world.folder / "unplugged");
    const auto mounted = std::exchange(world.volumes->list, {});
    EXPECT_EQ(reasonOf(session), "The drive Backup is away.");
    putBack(session);
    EXPECT_FALSE(Files::itemExists(world.drive));
    // What a drive has left behind at its path is not the drive.
    makeFolder(world.drive);
    EXPECT_EQ(reasonOf(session), "The drive Backup is away.");
    fs::remove(world.drive);
    fs::rename(world.folder / "unplugged", world.drive);
    world.volumes->list = mounted;
    EXPECT_EQ(putBack(session).back().state, State::back);
    EXPECT_TRUE(Files::itemExists(copy));
}

TEST_F(UninstallUndoTest, RefusesPlacesThatNoRunTakesFrom) {
    const auto session = world.run();
    const fs::path wrong[] = {
        world.home / "Documents/Foo",
        world.home / "notes",
        world.home / "Library/Caches/../../notes",
        "Library/Caches/Foo",
        "Foo",
        world.home / "Library/Caches/Foo/deep",
        world.home / "Library/Caches",
        world.folder / "System/Foo",
        world.home / "Library/Caches/",
        world.folder / "etc/passwd",
        world.home / ".Trash",
        fs::path(),
    };
    for (const fs::path& path : wrong) {
        auto forged = session;
        forged.movedItems[1].originalPath = path;
        EXPECT_EQ(reasonOf(forged), refused) << path;
        putBack(forged);
        EXPECT_EQ(contentOf(inTrash("Foo")), "data") << path;
    }
}

TEST_F(UninstallUndoTest, RefusesToTakeFromAnywhereButTheTrashAndTheStash) {
    const auto session = world.run();
    makeFile(world.home / "Documents/letter", "letter");
    const fs::path wrong[] = {world.home / "Documents/letter", world.home / ".Trash/../Documents/letter", "letter",
                              inTrash("Foo.app/Contents/Info.plist")};
    for (const fs::path& path : wrong) {
        auto forged = session;
        forged.movedItems[1].trashedTo = path;
        EXPECT_THAT(reasonOf(forged),
                    testing::AnyOf(refused, "It is not in the Trash any more.", HasSubstr("its drive may be away")))
            << path;
        putBack(forged);
        EXPECT_FALSE(Files::itemExists(data)) << path;
    }
    EXPECT_EQ(contentOf(world.home / "Documents/letter"), "letter");
    auto forged = session;
    forged.movedItems[1].trashedTo.reset();
    forged.movedItems[1].stashedTo = world.home / "Documents";
    EXPECT_EQ(reasonOf(forged), refused);
}

TEST_F(UninstallUndoTest, FollowsNoLinkThatWasNotOnTheWayBefore) {
    const auto session = world.run();
    fs::remove_all(data.parent_path());
    makeFolder(world.home / "Documents");
    makeLink(data.parent_path(), world.home / "Documents");
    const std::string reason = "The way to " + data.native() + " leads somewhere else by now.";
    EXPECT_EQ(reasonOf(session), reason);
    fs::remove(world.sessions() / session.id / "items.tsv");
    EXPECT_EQ(reasonOf(session), reason);
    putBack(session);
    EXPECT_THAT(Files::names(world.home / "Documents"), IsEmpty());
}

TEST_F(UninstallUndoTest, FollowsALinkThatWasOnTheWayBefore) {
    const fs::path moved = world.drive / "Logs";
    makeFile(moved / "Foo", "log");
    makeLink(world.library("Logs"), moved);
    world.plan.candidates.push_back(world.candidate(world.library("Logs/Foo")));
    const auto session = world.run();
    ASSERT_FALSE(Files::itemExists(moved / "Foo"));
    putBack(session);
    EXPECT_EQ(contentOf(moved / "Foo"), "log");
}

TEST_F(UninstallUndoTest, TellsOfAWayThatLeadsNowhere) {
    const fs::path logs = world.library("Logs");
    for (const fs::path& moved : {world.drive / "Logs", world.home / "Logs"}) {
        world.plan = world.planWith({});
        makeFile(moved / "Foo", "log");
        makeLink(logs, moved);
        world.plan.candidates = {world.candidate(logs / "Foo")};
        const auto session = world.run();
        fs::rename(moved, world.folder / "away");
        const auto mounted = std::exchange(world.volumes->list, {});
        EXPECT_EQ(reasonOf(session), moved.parent_path() == world.drive
                                         ? "The drive Backup is away."
                                         : "The way to " + (logs / "Foo").native() + " leads nowhere at the moment.");
        fs::rename(world.folder / "away", moved);
        world.volumes->list = mounted;
        EXPECT_EQ(putBack(session).back().state, State::back);
        fs::remove(logs);
    }
}

TEST_F(UninstallUndoTest, LooksForNothingWhereNothingStood) {
    fs::remove(data);
    const auto session = world.run();
    const std::string reason = "Nothing stood there when the uninstall began.";
    EXPECT_EQ(reasonOf(session), reason);
    // Nor does it take what an earlier uninstall has set aside.
    makeFile(data.parent_path() / ".TarvikTrash/Foo-uninstall-2026-11-15T174540Z", "older");
    EXPECT_EQ(reasonOf(session), reason);
    putBack(session);
    EXPECT_FALSE(Files::itemExists(data));
}

TEST_F(UninstallUndoTest, TakesOnlyWhatBearsItsNameWithoutAJournal) {
    auto session = world.run();
    makeFile(inTrash("letter"), "letter");
    fs::remove(world.sessions() / session.id / "items.tsv");
    EXPECT_EQ(look(session).state, State::waiting);
    session.movedItems[1].trashedTo = inTrash("letter");
    EXPECT_EQ(reasonOf(session), "Nothing tells that " + inTrash("letter").native() + " is what was moved there.");
    session.movedItems[1].trashedTo = inTrash(std::string("Foo") + '\0' + "x");
    EXPECT_EQ(reasonOf(session), refused);
    putBack(session);
    EXPECT_FALSE(Files::itemExists(data));
}

TEST_F(UninstallUndoTest, TakesNoStashThatIsALink) {
    world.refuseAllTrash();
    const auto session = world.run();
    const fs::path stash = data.parent_path() / ".TarvikTrash";
    fs::rename(stash, world.home / "elsewhere");
    makeLink(stash, world.home / "elsewhere");
    EXPECT_EQ(reasonOf(session), "It is not in " + stash.native() + " any more.");
}

TEST_F(UninstallUndoTest, LeavesNoFoldersWhereNothingCameBack) {
    const auto session = world.run();
    fs::remove_all(world.bundle.parent_path());
    // The bundle goes from the Trash when it has been looked at.
    const AppUninstallReporter reporter{[&](const std::string& line) {
        if (line.starts_with("put-back")) fs::remove_all(inTrash("Foo.app"));
    }};
    const auto items = UninstallUndo::putBack(world.host, session, reporter);
    EXPECT_EQ(items[0].state, State::stuck);
    EXPECT_EQ(items[1].state, State::back);
    EXPECT_FALSE(Files::itemExists(world.bundle.parent_path()));
}

TEST_F(UninstallUndoTest, IsRefusedWhileAnotherRunHasTheApplication) {
    const auto session = world.run();
    const std::string refusal = "Foo is being uninstalled or put back by another run. Wait until that has ended.";
    {
        const auto lock = UninstallLock::take(world.sessions(), world.bundle, "Foo");
        EXPECT_EQ(failureOf([&] { putBack(session); }), refusal);
        EXPECT_EQ(failureOf([&] { world.run(); }), refusal);
        EXPECT_FALSE(Files::itemExists(data));
    }
    {
        // By the copy on a drive that its link led to.
        auto withCopy = session;
        withCopy.movedItems[0].originalPath = world.drive / "Foo.app";
        const auto lock = UninstallLock::take(world.sessions(), world.drive / "Foo.app", "Foo");
        EXPECT_EQ(failureOf([&] { putBack(withCopy); }), refusal);
    }
    EXPECT_EQ(failureOf([&] { putBack(session); }), "done");
    EXPECT_TRUE(Files::itemExists(data));
}

TEST_F(UninstallUndoTest, BringsALinkBackAsALink) {
    fs::remove(data);
    makeLink(data, "../nowhere");
    world.plan = world.planWith({data});
    const auto session = world.run();
    putBack(session);
    EXPECT_EQ(Files::linkText(data), "../nowhere");
}

TEST_F(UninstallUndoTest, SaysHowManyCameBack) {
    using UninstallUndo::Item;
    const Item waiting{.state = State::waiting};
    const Item back{.state = State::back};
    const Item stuck{.state = State::stuck};
    using UninstallUndo::summary;
    EXPECT_EQ(summary({}, {}), "Everything is back already.");
    EXPECT_EQ(summary({waiting}, {back}), "Put back 1 item.");
    EXPECT_EQ(summary({waiting, back}, {back, back}), "Put back 1 item.");
    EXPECT_EQ(summary({waiting, waiting, stuck}, {back, back, stuck}), "Put back 2 items. 1 item could not come back.");
    EXPECT_EQ(summary({stuck, stuck}, {stuck, stuck}), "Nothing was put back. 2 items could not come back.");
}

}  // namespace tarvik::test
