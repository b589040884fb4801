#include "State/Uninstall/UninstallStateTest.h"

namespace tarvik::test {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Kind = PastUninstallRow::Kind;

class UninstallRunTest : public UninstallStateTest {
protected:
    /// The rows of past uninstalls: "name: state (note)".
    std::vector<std::string> past() const {
        std::vector<std::string> lines;
        for (const PastUninstallRow& row : tab().past()->rows()) {
            std::string line =
                row.kind == Kind::item ? "  " + row.name.section('/', -1).toStdString() : row.name.toStdString();
            if (!row.state.isEmpty()) line += ": " + row.state.toStdString();
            if (!row.note.isEmpty()) line += " (" + row.note.toStdString() + ")";
            lines.push_back(line);
        }
        return lines;
    }
    /// The clock of the made machine stands still: from now on it is a minute later.
    void letTimePass() {
        const auto later = world.host.now() + std::chrono::minutes(1);
        world.host.now = [later] { return later; };
        state = std::make_unique<AppState>(world.host, dialogs);
    }
    void putBack(std::size_t session = 0) {
        tab().putBack(QString::fromStdString(tab().uninstallSessions().at(session).id));
        settle();
    }
};

}  // namespace

TEST_F(UninstallRunTest, RemovesWhatIsTickedOnceTheUserHasAgreed) {
    const fs::path bundle = makeApp("Atlas");
    choose("Atlas");
    remove();
    EXPECT_THAT(dialogs.asked,
                ElementsAre(Dialog{"Uninstall Atlas?",
                                   "Will move 2 items to Trash. This action moves files; it does not permanently "
                                   "delete them.",
                                   {"Uninstall", "Cancel"}}));
    EXPECT_FALSE(fs::exists(bundle));
    EXPECT_FALSE(fs::exists(cacheOf("Atlas")));
    EXPECT_EQ(info(), "Uninstalled Atlas — 2 items.");
    EXPECT_EQ(error(), "");
    EXPECT_FALSE(tab().isUninstalling());
    EXPECT_FALSE(tab().selectedUninstallApp());
    EXPECT_FALSE(tab().uninstallPlan());
    EXPECT_THAT(listed(), IsEmpty()) << "the list has been refreshed";
    EXPECT_EQ(log().value(2), "run-start");
    EXPECT_EQ(log().value(3).section('\t', 0, 0), "uninstall-start");
    EXPECT_EQ(log().last(), "uninstall-done\titems=2\treceipts=0");
    EXPECT_THAT(past(), ElementsAre("Atlas"));
}

TEST_F(UninstallRunTest, TouchesNothingWhenTheUserRefuses) {
    const fs::path bundle = makeApp("Atlas");
    choose("Atlas");
    dialogs.answers = {1};
    remove();
    EXPECT_TRUE(fs::exists(bundle));
    EXPECT_TRUE(tab().uninstallPlan());
    EXPECT_EQ(info() + error(), "");
    EXPECT_EQ(log().size(), 2);
    EXPECT_FALSE(state->isBusy());
}

TEST_F(UninstallRunTest, AsksNothingWhenNothingIsTicked) {
    makeApp("Atlas");
    choose("Atlas");
    for (const auto& candidate : tab().uninstallPlan()->candidates) tab().toggleChecked(candidate.path.native());
    remove();
    EXPECT_EQ(error(), "Nothing checked to remove.");
    state->clearError();
    tab().runUninstall(true);
    settle();
    EXPECT_EQ(error(), "Nothing checked to remove.");
    EXPECT_THAT(dialogs.asked, IsEmpty());
    EXPECT_EQ(log().size(), 2);
}

TEST_F(UninstallRunTest, RehearsesWithoutTouchingAnything) {
    const fs::path bundle = makeApp("Atlas");
    choose("Atlas");
    tab().runUninstall(true);
    EXPECT_TRUE(tab().isUninstalling());
    EXPECT_FALSE(state->isBusy()) << "nothing is touched";
    settle();
    EXPECT_EQ(info(), "Dry-run complete (2 items).");
    EXPECT_THAT(dialogs.asked, IsEmpty());
    EXPECT_TRUE(fs::exists(bundle));
    EXPECT_TRUE(tab().uninstallPlan());
    EXPECT_EQ(log().value(2), "dry-run-start");
    EXPECT_THAT(log(), Contains("dry-trash\tcaches\t" + QString::fromStdString(cacheOf("Atlas").native())));
    EXPECT_THAT(tab().uninstallSessions(), IsEmpty());
    tab().toggleCategoryChecked(UninstallCategory::caches);
    tab().runUninstall(true);
    settle();
    EXPECT_EQ(info(), "Dry-run complete (1 item).");
}

TEST_F(UninstallRunTest, RemovesATickedDaemonThatDoesNotGoByDefault) {
    makeApp("Atlas");
    const fs::path daemon = world.folder / "Library/LaunchDaemons/org.Atlas.app.plist";
    makeFile(daemon, "<plist/>");
    choose("Atlas");
    EXPECT_THAT(tab().uninstallChecked(), testing::Not(Contains(daemon.native())));
    tab().toggleCategoryChecked(UninstallCategory::launchDaemons);
    remove();
    EXPECT_FALSE(fs::exists(daemon));
    EXPECT_EQ(info(), "Uninstalled Atlas — 3 items.");
}

TEST_F(UninstallRunTest, LeavesWhatIsNotTicked) {
    const fs::path bundle = makeApp("Atlas");
    choose("Atlas");
    tab().toggleChecked(cacheOf("Atlas").native());
    remove();
    EXPECT_FALSE(fs::exists(bundle));
    EXPECT_TRUE(fs::exists(cacheOf("Atlas")));
    EXPECT_EQ(info(), "Uninstalled Atlas — 1 item.");
}

TEST_F(UninstallRunTest, TellsWhyItRefuses) {
    makeApp("Atlas");
    choose("Atlas");
    AppRecord system = *tab().selectedUninstallApp();
    system.kind = AppRecordKind::systemRisky;
    tab().selectUninstallApp(system);
    settle();
    remove();
    EXPECT_EQ(error(), "Refusing to uninstall system app: " + system.bundlePath.native());
    EXPECT_EQ(log().last().toStdString(), "failed\t" + error());
    EXPECT_FALSE(tab().isUninstalling());
    EXPECT_FALSE(state->isBusy());
    EXPECT_TRUE(fs::exists(system.bundlePath));
}

TEST_F(UninstallRunTest, AsksAboutWhatRunsBeforeAnythingIsTouched) {
    const fs::path bundle = makeApp("Atlas");
    world.applications->inUse = {bundle};
    choose("Atlas");
    dialogs.answers = {0, 1};
    remove();
    ASSERT_EQ(dialogs.asked.size(), 2U);
    EXPECT_THAT(dialogs.asked[1].text, HasSubstr("Atlas"));
    EXPECT_TRUE(fs::exists(bundle));
    EXPECT_EQ(info() + error(), "");
    EXPECT_TRUE(tab().uninstallPlan());
    EXPECT_EQ(log().size(), 2);
}

TEST_F(UninstallRunTest, QuitsWhatRunsOnTheUsersWord) {
    const fs::path bundle = makeApp("Atlas");
    world.applications->list = {{.process = 4711, .bundlePath = bundle}};
    world.applications->quitsWhenAsked = true;
    choose("Atlas");
    remove();
    EXPECT_EQ(dialogs.asked.size(), 2U);
    EXPECT_EQ(world.applications->terminated.size(), 1U);
    EXPECT_FALSE(fs::exists(bundle));
    EXPECT_EQ(info(), "Uninstalled Atlas — 2 items.");
}

TEST_F(UninstallRunTest, RefusesWhileSomethingElseIsUnderWay) {
    const fs::path bundle = makeApp("Atlas");
    choose("Atlas");
    const auto held = state->act({"Quit?", "", {"Quit", "Cancel"}});
    remove();
    EXPECT_EQ(error(), "Another item is being moved. Try again when it is done.");
    EXPECT_TRUE(fs::exists(bundle));
    EXPECT_THAT(dialogs.asked, IsEmpty());
}

TEST_F(UninstallRunTest, AsksBeforeTheWindowClosesInTheMiddle) {
    const fs::path bundle = makeApp("Atlas");
    choose("Atlas");
    bool isClosable = true;
    bool hasLooked = false;
    QObject::connect(&tab(), &UninstallState::isUninstallingChanged, &tab(), [&] {
        if (!std::exchange(hasLooked, true)) isClosable = state->mayClose();
    });
    remove();
    EXPECT_FALSE(isClosable);
    ASSERT_EQ(dialogs.asked.size(), 2U);
    EXPECT_EQ(dialogs.asked[1].title, "Quit while an application is being uninstalled?");
    EXPECT_FALSE(fs::exists(bundle)) << "the run comes to its end";
}

TEST_F(UninstallRunTest, PutsEverythingBackOnceTheUserHasAgreed) {
    const fs::path bundle = makeApp("Atlas");
    const std::string before = pictureOf(world.home / "Library/Caches") + pictureOf(applications);
    choose("Atlas");
    remove();
    dialogs.asked.clear();
    putBack();
    EXPECT_THAT(dialogs.asked, ElementsAre(Dialog{"Put back Atlas?",
                                                  "Will bring 2 items back to their old places. Nothing that stands "
                                                  "there is replaced.",
                                                  {"Put Back", "Cancel"}}));
    EXPECT_EQ(pictureOf(world.home / "Library/Caches") + pictureOf(applications), before);
    EXPECT_EQ(info(), "Put back 2 items.");
    EXPECT_THAT(past(), ElementsAre("Atlas: put back"));
    EXPECT_THAT(listed(), ElementsAre("Atlas"));
    EXPECT_EQ(tab().past()->puttingBackId(), "");
    state->clearInfo();
    putBack();
    EXPECT_EQ(error(), "Nothing of Atlas can come back.");
}

TEST_F(UninstallRunTest, PutsNothingBackWhenTheUserRefuses) {
    const fs::path bundle = makeApp("Atlas");
    choose("Atlas");
    remove();
    state->clearInfo();
    dialogs.answers = {1};
    putBack();
    EXPECT_FALSE(fs::exists(bundle));
    EXPECT_EQ(info() + error(), "");
    EXPECT_FALSE(state->isBusy());
}

TEST_F(UninstallRunTest, NeverPutsAnythingBackOverWhatStandsThere) {
    const fs::path bundle = makeApp("Atlas");
    choose("Atlas");
    remove();
    makeFile(cacheOf("Atlas") / "new", "new");
    putBack();
    EXPECT_THAT(dialogs.asked.back().text, HasSubstr("1 item back to its old place"));
    EXPECT_THAT(dialogs.asked.back().details,
                ElementsAre(cacheOf("Atlas").native() + ": Something stands at its old place."));
    EXPECT_TRUE(fs::exists(bundle));
    EXPECT_TRUE(fs::exists(cacheOf("Atlas") / "new"));
    EXPECT_FALSE(fs::exists(cacheOf("Atlas") / "cached"));
    EXPECT_THAT(past(), ElementsAre("Atlas: partly put back (1 item cannot come back)", "  Atlas.app: put back",
                                    "  Atlas: cannot come back (Something stands at its old place.)"));
}

TEST_F(UninstallRunTest, ListsThePastTheNewestFirst) {
    makeApp("Atlas");
    makeApp("Brush");
    choose("Atlas");
    remove();
    letTimePass();
    choose("Brush");
    remove();
    EXPECT_THAT(past(), ElementsAre("Brush", "Atlas"));
    tab().past()->setRowOpen(1, true);
    EXPECT_THAT(past(), ElementsAre("Brush", "Atlas", "  Atlas.app", "  Atlas"));
    tab().past()->setRowOpen(1, false);
    EXPECT_THAT(past(), ElementsAre("Brush", "Atlas"));
}

TEST_F(UninstallRunTest, TellsOfReceiptsThatAreStillThere) {
    // One that cannot be forgotten, and one that only the tool calls so.
    world.host.tools.pkgutil = world.tool("pkgutil", R"(
        [ "$1 $2" = "--forget one" ] && { echo "No receipt for 'one' found." >&2; exit 1; }
        [ "$1" = "--forget" ] || { echo one; echo two; })");
    state = std::make_unique<AppState>(world.host, dialogs);
    makeApp("Atlas");
    choose("Atlas");
    ASSERT_THAT(tab().uninstallPlan()->candidates, testing::SizeIs(4));
    tab().toggleCategoryChecked(UninstallCategory::receipts);
    remove();
    EXPECT_EQ(info(), "Uninstalled Atlas — 2 items.");
    EXPECT_EQ(error(), "2 receipts could not be forgotten. See the log.");
    EXPECT_THAT(log(), Contains("receipt-stays\ttwo"));
}

TEST_F(UninstallRunTest, TellsWhatCouldNotBeRemoved) {
    makeApp("Atlas");
    choose("Atlas");
    // Something else has come to stand there since the plan.
    fs::remove_all(cacheOf("Atlas"));
    makeFile(cacheOf("Atlas"), "another");
    remove();
    EXPECT_EQ(info(), "Uninstalled Atlas — 2 items.");
    EXPECT_EQ(error(), "1 item could not be removed. See past uninstalls.");
    ASSERT_EQ(past().size(), 3U);
    EXPECT_EQ(past()[0], "Atlas (1 item could not be removed)");
    EXPECT_EQ(past()[2], "  Atlas: not removed (It was left as it is: something else stands there by now.)");
    EXPECT_TRUE(fs::exists(cacheOf("Atlas")));
}

}  // namespace tarvik::test
