#include "State/EventLoop.h"
#include "State/StateWorld.h"
#include "Support/Bundles.h"
#include "Support/Gate.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DedupeStateTest : public StateWorld {
protected:
    /// The time is asked for at the end of a scan, and by nothing else here.
    DedupeStateTest() {
        world.host.now = [gate = endOfScan, now = world.host.now] {
            gate->pass();
            return now();
        };
        world.host.trash = std::make_shared<GatedTrash>(world.trash, trashing);
        state = std::make_unique<AppState>(world.host, dialogs);
    }
    ~DedupeStateTest() override {
        endOfScan->open();
        trashing->open();
        state.reset();
    }

    void addApp(const std::string& name) const {
        makeBundle(applications / (name + ".app"), {{"CFBundleIdentifier", "org.example." + name}});
    }
    void addLauncher(const std::string& name, const std::string& app) const {
        makeLauncher(own / (name + ".app"), "/gone", {{"CFBundleIdentifier", "org.example." + app}});
    }
    void addDuplicate(const std::string& name) const {
        addApp(name);
        addLauncher(name, name);
    }
    void scan() {
        dedupeTab().refreshDedupe();
        settle();
    }
    void run() {
        dedupeTab().runDedupe();
        settle();
    }
    QVariant shown(int row, const char* role) const {
        const auto* model = dedupeTab().groupsModel();
        return model->data(model->index(row, 0), model->roleNames().key(role));
    }

    const fs::path applications = world.folder / "Applications";
    const fs::path own = world.home / "Applications";
    const std::shared_ptr<Gate> endOfScan = std::make_shared<Gate>();
    const std::shared_ptr<Gate> trashing = std::make_shared<Gate>();
};

}  // namespace

TEST_F(DedupeStateTest, IsPartOfARefreshOfAll) {
    addDuplicate("Edit");
    EXPECT_FALSE(dedupeTab().hasPlan());
    begin();
    EXPECT_TRUE(dedupeTab().hasPlan());
    EXPECT_EQ(dedupeTab().groupCount(), 1);
}

TEST_F(DedupeStateTest, TellsWhatAScanHasFound) {
    addDuplicate("Edit");
    addLauncher("Another", "Edit");
    addDuplicate("Draw");
    dedupeTab().refreshDedupe();
    EXPECT_TRUE(dedupeTab().isScanningDedupe());
    settle();
    EXPECT_FALSE(dedupeTab().isScanningDedupe());
    EXPECT_EQ(dedupeTab().groupCount(), 2);
    EXPECT_EQ(dedupeTab().removableCount(), 3);
    EXPECT_THAT(dedupeTab().removableSize().toStdString(), testing::MatchesRegex("[0-9.]+ [KM]B"));
    EXPECT_EQ(shown(0, "name"), "Draw");
    EXPECT_EQ(shown(0, "duplicatesText"), "1 duplicate");
    EXPECT_EQ(shown(1, "duplicatesText"), "2 duplicates");
    EXPECT_EQ(shown(1, "keepText").toString().toStdString(), (applications / "Edit.app").native());
    const auto removed = shown(1, "removed").toList();
    ASSERT_EQ(removed.size(), 2);
    EXPECT_EQ(removed[0].toMap()["pathText"].toString().toStdString(), (own / "Another.app").native());
    EXPECT_EQ(removed[0].toMap()["targetText"], "target: /gone");
}

TEST_F(DedupeStateTest, ShowsNoTargetWhereThereIsNone) {
    addApp("Edit");
    makeBundle(own / "Edit.app", {{"CFBundleIdentifier", "org.example.Edit.externallauncher"}});
    scan();
    EXPECT_EQ(shown(0, "removed").toList().at(0).toMap()["targetText"], "");
}

TEST_F(DedupeStateTest, DropsAScanWhileOneIsUnderWay) {
    int changes = 0;
    QObject::connect(&dedupeTab(), &DedupeState::isScanningDedupeChanged, [&] { ++changes; });
    dedupeTab().refreshDedupe();
    dedupeTab().refreshDedupe();
    settle();
    EXPECT_EQ(changes, 2) << "one begin and one end";
}

TEST_F(DedupeStateTest, KeepsTheLastPlanUntilTheNextIsThere) {
    addDuplicate("Edit");
    scan();
    fs::remove_all(own);
    dedupeTab().refreshDedupe();
    EXPECT_EQ(dedupeTab().groupCount(), 1);
    settle();
    EXPECT_EQ(dedupeTab().groupCount(), 0);
    EXPECT_TRUE(dedupeTab().hasPlan());
}

TEST_F(DedupeStateTest, HasNothingToRemoveWithoutAPlanOrWithAnEmptyOne) {
    addDuplicate("Edit");
    run();
    EXPECT_EQ(state->lastError(), "No duplicate launchers to remove.");
    fs::remove_all(own);
    scan();
    state->clearError();
    run();
    EXPECT_EQ(state->lastError(), "No duplicate launchers to remove.");
    EXPECT_EQ(state->lastInfo(), "");
}

TEST_F(DedupeStateTest, RemovesWithoutAQuestionAndScansAgain) {
    addDuplicate("Edit");
    scan();
    dedupeTab().runDedupe();
    EXPECT_TRUE(dedupeTab().isRunningDedupe());
    settle();
    EXPECT_FALSE(dedupeTab().isRunningDedupe());
    EXPECT_EQ(state->lastInfo(), "Removed 1 duplicate launcher.");
    EXPECT_EQ(state->lastError(), "");
    EXPECT_THAT(dialogs.asked, IsEmpty());
    EXPECT_EQ(dedupeTab().groupCount(), 0);
    EXPECT_FALSE(fs::exists(own / "Edit.app"));
    EXPECT_TRUE(fs::exists(world.trash->folder / "Edit.app"));
    EXPECT_TRUE(state->selectedDrive()) << "a refresh of all follows";
}

TEST_F(DedupeStateTest, CountsWhatHasGone) {
    addDuplicate("Edit");
    addDuplicate("Draw");
    scan();
    run();
    EXPECT_EQ(state->lastInfo(), "Removed 2 duplicate launchers.");
}

TEST_F(DedupeStateTest, TellsOfFailuresAndKeepsTheirRows) {
    addDuplicate("Edit");
    addDuplicate("Draw");
    scan();
    world.trash->refuses = true;
    run();
    EXPECT_EQ(state->lastError(), "Dedupe completed with 2 failures.");
    EXPECT_EQ(state->lastInfo(), "");
    EXPECT_EQ(dedupeTab().groupCount(), 2);
    ASSERT_EQ(dedupeTab().failures().size(), 2);
    EXPECT_TRUE(dedupeTab().failures().at(0).contains(QString::fromStdString(own / "Draw.app")));

    world.trash->refuses = false;
    run();
    EXPECT_EQ(state->lastInfo(), "Removed 2 duplicate launchers.");
    EXPECT_THAT(dedupeTab().failures(), IsEmpty());
}

TEST_F(DedupeStateTest, GoesOnAfterALauncherThatAnUpdaterHasReplaced) {
    addDuplicate("Edit");
    addDuplicate("Draw");
    scan();
    fs::remove_all(own / "Edit.app");
    makeBundle(own / "Edit.app", {{"CFBundleIdentifier", "org.example.Edit"}});
    run();
    EXPECT_EQ(state->lastError(), "Dedupe completed with 1 failure.");
    EXPECT_THAT(dedupeTab().failures(),
                ElementsAre(QString::fromStdString((own / "Edit.app").native() + " is not a launcher any more.")));
    EXPECT_TRUE(fs::exists(own / "Edit.app"));
    EXPECT_FALSE(fs::exists(own / "Draw.app"));
    EXPECT_EQ(dedupeTab().groupCount(), 0);
    scan();
    EXPECT_THAT(dedupeTab().failures(), IsEmpty()) << "the user has looked anew";
}

TEST_F(DedupeStateTest, DropsARunWhileOneIsUnderWay) {
    addDuplicate("Edit");
    scan();
    trashing->close();
    dedupeTab().runDedupe();
    trashing->waitForSomebody();
    dedupeTab().runDedupe();
    EXPECT_EQ(state->lastError(), "");
    trashing->open();
    settle();
    EXPECT_EQ(state->lastInfo(), "Removed 1 duplicate launcher.");
    EXPECT_EQ(state->lastError(), "");
}

TEST_F(DedupeStateTest, NeverShowsWhatAScanSawBeforeARunEnded) {
    addDuplicate("Edit");
    scan();
    endOfScan->close();
    dedupeTab().refreshDedupe();
    endOfScan->waitForSomebody();
    std::vector<int> counts;
    QObject::connect(&dedupeTab(), &DedupeState::dedupePlanChanged,
                     [&] { counts.push_back(dedupeTab().groupCount()); });
    dedupeTab().runDedupe();
    spinUntil([&] { return !dedupeTab().isRunningDedupe(); });
    endOfScan->open();
    settle();
    EXPECT_THAT(counts, ElementsAre(0)) << "the scan was made anew";
    EXPECT_FALSE(dedupeTab().isScanningDedupe());
}

TEST_F(DedupeStateTest, NeverShowsWhatAScanSawBeforeAMoveEnded) {
    addDuplicate("Edit");
    for (const auto tell : {&DedupeState::linksChanged, &DedupeState::refresh}) {
        fs::remove_all(own / "Draw.app");
        endOfScan->close();
        dedupeTab().refreshDedupe();
        endOfScan->waitForSomebody();
        addDuplicate("Draw");
        (dedupeTab().*tell)();
        endOfScan->open();
        settle();
        EXPECT_EQ(dedupeTab().groupCount(), 2);
    }
}

TEST_F(DedupeStateTest, RemovesNothingWhileSomethingIsBeingMoved) {
    addDuplicate("Edit");
    scan();
    {
        const auto held = state->prepare();
        run();
        EXPECT_EQ(state->lastError(), "Another item is being moved. Try again when it is done.");
        EXPECT_FALSE(dedupeTab().isRunningDedupe());
    }
    EXPECT_TRUE(fs::exists(own / "Edit.app"));
}

TEST_F(DedupeStateTest, EndsBeforeTheWindowCloses) {
    addDuplicate("Edit");
    scan();
    trashing->close();
    dedupeTab().runDedupe();
    EXPECT_TRUE(state->isBusy()) << "nothing else begins meanwhile";
    bool isReady = false;
    QObject::connect(state.get(), &AppState::readyToClose, [&] { isReady = true; });
    EXPECT_FALSE(state->mayClose());
    spinUntil([&] { return !dialogs.asked.empty(); });
    EXPECT_EQ(dialogs.asked.front().title, "Quit while duplicate launchers are being removed?");
    EXPECT_FALSE(isReady);
    trashing->open();
    spinUntil([&] { return isReady; });
    EXPECT_FALSE(fs::exists(own / "Edit.app"));
}

TEST_F(DedupeStateTest, WaitsForNoScanWhenTheWindowCloses) {
    addDuplicate("Edit");
    endOfScan->close();
    dedupeTab().refreshDedupe();
    endOfScan->waitForSomebody();
    QObject::connect(&dedupeTab(), &DedupeState::dedupePlanChanged, [] { ADD_FAILURE() << "nobody looks any more"; });
    dedupeTab().stop();
    endOfScan->open();
    settle();
    EXPECT_FALSE(dedupeTab().hasPlan());
}

}  // namespace tarvik::test
