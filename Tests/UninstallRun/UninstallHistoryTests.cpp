#include "Platform/Files/Files.h"
#include "Platform/Machine/TrashCan.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"
#include "UninstallRun/AppUninstallRunner.h"
#include "UninstallRun/UninstallHistory.h"
#include "UninstallRun/UninstallRunWorld.h"
#include "UninstallRun/UninstallSessionStore.h"
#include "UninstallRun/UninstallUndo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using State = UninstallUndo::Item::State;

/// A Trash that ends the process at one of its items, before it moves it or after.
class DeadlyTrash : public TrashCan {
public:
    enum class When { before, after };
    DeadlyTrash(std::shared_ptr<const TrashCan> trash, fs::path last, When when)
        : m_trash(std::move(trash)), m_last(std::move(last)), m_when(when) {}

    fs::path moveToTrash(const fs::path& item) const override {
        if (item == m_last && m_when == When::before) ::raise(SIGKILL);
        fs::path place = m_trash->moveToTrash(item);
        if (item == m_last) ::raise(SIGKILL);
        return place;
    }

private:
    const std::shared_ptr<const TrashCan> m_trash;
    const fs::path m_last;
    const When m_when;
};

class UninstallHistoryTest : public testing::Test {
protected:
    /// Runs the uninstall in a process of its own, which is killed at the item.
    void runKilledAt(const fs::path& item, DeadlyTrash::When when) {
        const pid_t child = ::fork();
        if (child == 0) {
            world.host.trash = std::make_shared<DeadlyTrash>(world.host.trash, item, when);
            world.run();
            ::_exit(0);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status));
    }
    std::vector<std::string> ids() const {
        std::vector<std::string> ids;
        for (const auto& session : UninstallHistory::list(world.host)) ids.push_back(session.id);
        return ids;
    }
    fs::path recordOf(const std::string& id) const { return world.sessions() / id / "session.json"; }

    UninstallRunWorld world;
};

}  // namespace

TEST_F(UninstallHistoryTest, HasTheNewestFirst) {
    EXPECT_THAT(ids(), IsEmpty());
    const auto first = world.run();
    makeBundle(world.bundle, {{"CFBundleIdentifier", "org.example.Foo"}});
    world.plan = world.planWith({});
    const auto second = world.run();
    EXPECT_THAT(ids(), ElementsAre(second.id, first.id));
    EXPECT_EQ(UninstallHistory::find(world.host, first.id)->movedItems, first.movedItems);
    EXPECT_EQ(UninstallHistory::find(world.host, "20010101_000000"), std::nullopt);
}

TEST_F(UninstallHistoryTest, LeavesOutWhatIsNoRecord) {
    const auto session = world.run();
    const std::string good = contentOf(recordOf(session.id));
    makeFile(recordOf("20260101_000000"), "{ not JSON");
    makeFile(recordOf("20260101_000001"), good.substr(0, good.size() / 2));
    makeFile(recordOf("20260101_000002"), good);  // Under another name than its own.
    makeFile(world.sessions() / "20260101_000003", "a file");
    makeFile(recordOf("20260101_000004"));
    fs::resize_file(recordOf("20260101_000004"), std::uintmax_t{1} << 33U);  // Huge, and takes no room.
    makePipe(world.sessions() / "20260101_000005/session.json");
    makeFile(recordOf(".hidden"), good);
    EXPECT_THAT(ids(), ElementsAre(session.id));
}

TEST_F(UninstallHistoryTest, ShowsARecordFromTheFuture) {
    auto session = world.run();
    session.id = "29991231_235959";
    session.createdAt += std::chrono::hours(24 * 365 * 200);
    UninstallSessionStore::save(session, world.sessions());
    EXPECT_EQ(ids().front(), session.id);
}

TEST_F(UninstallHistoryTest, FindsNothingByWhatIsNoId) {
    const auto session = world.run();
    makeFile(world.sessions().parent_path() / "session.json", contentOf(recordOf(session.id)));
    for (const char* id :
         {"", ".", "..", "../UninstallSessions", "a/b", ".journals", "interrupted-", "interrupted-../x"})
        EXPECT_EQ(UninstallHistory::find(world.host, id), std::nullopt) << id;
}

TEST_F(UninstallHistoryTest, TellsWhyAnItemHasStayed) {
    const fs::path data = world.library("Caches/org.example.Foo");
    world.addData(data);
    fs::remove(data);
    makeFolder(data);
    const auto session = world.run();
    ASSERT_FALSE(session.movedItems[1].succeeded);
    EXPECT_EQ(session.movedItems[1].error, std::nullopt);  // The record has none.
    const std::string reason = "It was left as it is: something else stands there by now.";
    EXPECT_EQ(UninstallHistory::list(world.host)[0].movedItems[1].error, reason);
    EXPECT_EQ(UninstallHistory::find(world.host, session.id)->movedItems[1].error, reason);
}

TEST_F(UninstallHistoryTest, AsksNothingOfASilentVolume) {
    const fs::path copy = world.drive / "ExternalTarvik/Apps/Foo.app";
    makeBundle(copy, {{"CFBundleIdentifier", "org.example.Foo"}});
    world.plan.candidates.push_back(world.candidate(copy, UninstallCategory::executable));
    runKilledAt(copy, DeadlyTrash::When::before);
    world.host.silentVolumes = {world.drive};
    const auto sessions = UninstallHistory::list(world.host);
    ASSERT_THAT(sessions, SizeIs(1));
    EXPECT_TRUE(sessions[0].movedItems[1].succeeded);  // For all that is known.
    const auto items = UninstallUndo::look(world.host, sessions[0]);
    EXPECT_EQ(items[1].state, State::stuck);
    EXPECT_EQ(items[1].reason, "Its drive does not answer.");
    world.host.silentVolumes.clear();
    EXPECT_FALSE(UninstallHistory::list(world.host)[0].movedItems[1].succeeded);
}

TEST_F(UninstallHistoryTest, ShowsADamagedRecordByItsJournal) {
    world.addData(world.library("Caches/Foo"));
    const auto session = world.run();
    fs::resize_file(recordOf(session.id), 100);
    ASSERT_THAT(ids(), ElementsAre(session.id));
    const auto found = UninstallHistory::find(world.host, session.id);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->movedItems, session.movedItems);
    for (const auto& item : UninstallUndo::putBack(world.host, *found, AppUninstallReporter::silent))
        EXPECT_EQ(item.state, UninstallUndo::Item::State::back) << item.reason;
}

TEST_F(UninstallHistoryTest, LeavesToALaterRunWhatThatTook) {
    const fs::path caches = world.library("Caches/Foo");
    const fs::path logs = world.library("Logs/Foo");
    for (const fs::path& path : {caches, logs}) world.addData(path);
    runKilledAt(caches, DeadlyTrash::When::after);
    ASSERT_THAT(UninstallHistory::list(world.host), SizeIs(1));
    world.plan = world.planWith({});
    world.plan.candidates = {world.candidate(logs)};
    const auto later = world.run();
    for (const auto& past : UninstallHistory::list(world.host)) {
        if (past.id == later.id) continue;
        EXPECT_EQ(UninstallHistory::find(world.host, past.id), past);
        for (const auto& item : past.movedItems)
            EXPECT_EQ(item.succeeded, item.originalPath != logs) << item.originalPath;
    }
}

TEST_F(UninstallHistoryTest, HasWhatAKilledRunTookAndPutsItBack) {
    for (const char* name : {"Caches/Foo", "Logs/Foo", "Preferences/org.example.Foo.plist", "WebKit/org.example.Foo"})
        world.addData(world.library(name), name);
    const std::string before = pictureOf(world.folder / "Applications") + pictureOf(world.home / "Library");
    for (const auto when : {DeadlyTrash::When::before, DeadlyTrash::When::after}) {
        world.plan = world.planWith({});
        for (const char* name :
             {"Caches/Foo", "Logs/Foo", "Preferences/org.example.Foo.plist", "WebKit/org.example.Foo"})
            world.plan.candidates.push_back(world.candidate(world.library(name)));
        runKilledAt(world.library("Logs/Foo"), when);
        const auto past = UninstallHistory::list(world.host);
        ASSERT_THAT(past, SizeIs(1));
        EXPECT_EQ(past[0].appName, "Foo");
        EXPECT_THAT(past[0].movedItems, SizeIs(5));
        const auto found = UninstallHistory::find(world.host, past[0].id);
        ASSERT_TRUE(found.has_value());
        EXPECT_EQ(*found, past[0]);
        const auto waiting = UninstallUndo::look(world.host, past[0]);
        EXPECT_THAT(waiting, SizeIs(when == DeadlyTrash::When::before ? 2 : 3));
        for (const auto& item : waiting) EXPECT_EQ(item.state, State::waiting) << item.reason;
        for (const auto& item : UninstallUndo::putBack(world.host, past[0], AppUninstallReporter::silent))
            EXPECT_EQ(item.state, State::back) << item.reason;
        fs::remove_all(world.library("Application Support"));
        EXPECT_EQ(pictureOf(world.folder / "Applications") + pictureOf(world.home / "Library"), before);
    }
}

TEST_F(UninstallHistoryTest, LeavesOutARunThatIsUnderWay) {
    std::vector<std::string> seen = {"nothing was looked at"};
    AppUninstallRunner::run(world.host, world.plan, UninstallSelection::everything, false, std::nullopt,
                            {[&](const std::string& line) {
                                if (line.starts_with("trash\t")) seen = ids();
                            }});
    EXPECT_THAT(seen, IsEmpty());
    EXPECT_THAT(ids(), SizeIs(1));
}

TEST_F(UninstallHistoryTest, HasARunOnceThatWasKilledBehindItsRecord) {
    const auto session = world.run();
    const fs::path journal = world.sessions() / ".journals/20261115_174543.tsv";
    fs::rename(world.sessions() / session.id / "items.tsv", journal);
    EXPECT_THAT(ids(), ElementsAre(session.id));
    EXPECT_EQ(UninstallUndo::look(world.host, session)[0].state, State::waiting);
    // What stands at the item's place in the Trash is still told apart.
    fs::remove_all(world.home / ".Trash/Foo.app");
    makeFolder(world.home / ".Trash/Foo.app");
    EXPECT_EQ(UninstallUndo::look(world.host, session)[0].state, State::stuck);
    makeBundle(world.bundle, {{"CFBundleIdentifier", "org.example.Foo"}});
    world.plan = world.planWith({});
    world.run();
    EXPECT_FALSE(Files::itemExists(journal));
    EXPECT_TRUE(Files::itemExists(world.sessions() / session.id / "items.tsv"));
}

TEST_F(UninstallHistoryTest, HasARunThatWasKilledBeforeItsRecordWasWhole) {
    const auto session = world.run();
    fs::rename(world.sessions() / session.id / "items.tsv", world.sessions() / ".journals/20261115_174543.tsv");
    fs::resize_file(recordOf(session.id), 100);
    EXPECT_THAT(ids(), ElementsAre("interrupted-20261115_174543"));
    EXPECT_EQ(UninstallHistory::list(world.host)[0].movedItems, session.movedItems);
}

TEST_F(UninstallHistoryTest, HidesNoInterruptedRunBehindARecord) {
    const auto session = world.run();
    const std::string id = "interrupted-20261115_174543";
    const fs::path journal = world.sessions() / ".journals/20261115_174543.tsv";
    fs::rename(world.sessions() / session.id / "items.tsv", journal);
    auto forged = session;
    fs::remove_all(world.sessions() / session.id);
    // A record of that name, one of another application, and one of an earlier run.
    forged.id = id;
    UninstallSessionStore::save(forged, world.sessions());
    EXPECT_THAT(ids(), ElementsAre(id));
    EXPECT_EQ(UninstallHistory::find(world.host, id)->createdAt, UninstallHistory::list(world.host)[0].createdAt);
    EXPECT_LT(UninstallHistory::find(world.host, id)->createdAt, session.createdAt);
    forged = session;
    forged.appPath = "/Applications/Other.app";
    UninstallSessionStore::save(forged, world.sessions());
    EXPECT_THAT(ids(), testing::Contains(id));
    forged = session;
    forged.createdAt -= std::chrono::hours(1);
    UninstallSessionStore::save(forged, world.sessions());
    EXPECT_THAT(ids(), testing::Contains(id));
    UninstallSessionStore::save(session, world.sessions());
    EXPECT_THAT(ids(), ElementsAre(session.id));
}

TEST_F(UninstallHistoryTest, TellsWhatAKilledRunTookThatIsFoundNowhere) {
    runKilledAt(world.bundle, DeadlyTrash::When::after);
    fs::remove_all(world.home / ".Trash/Foo.app");
    const auto past = UninstallHistory::list(world.host);
    ASSERT_THAT(past, SizeIs(1));
    EXPECT_TRUE(past[0].movedItems[0].succeeded);
    const auto items = UninstallUndo::look(world.host, past[0]);
    ASSERT_THAT(items, SizeIs(1));
    EXPECT_EQ(items[0].reason, "It is not in the Trash any more.");
}

TEST_F(UninstallHistoryTest, FindsWhatWasSetAsideByAKilledRun) {
    world.refuseAllTrash();
    const auto session = world.run();
    const fs::path journal = world.sessions() / ".journals/20261115_174543.tsv";
    const std::string text = contentOf(world.sessions() / session.id / "items.tsv");
    fs::remove_all(world.sessions() / session.id);
    // What a power cut leaves: what was flushed before anything went.
    makeFile(journal, text.substr(0, text.find("begin\n") + 6));
    const auto past = UninstallHistory::list(world.host);
    ASSERT_THAT(past, SizeIs(1));
    EXPECT_EQ(past[0].movedItems[0].stashedTo, world.bundle.parent_path() / ".TarvikTrash");
    EXPECT_EQ(UninstallUndo::putBack(world.host, past[0], AppUninstallReporter::silent)[0].state, State::back);
    EXPECT_TRUE(Files::itemExists(world.bundle));
}

}  // namespace tarvik::test
