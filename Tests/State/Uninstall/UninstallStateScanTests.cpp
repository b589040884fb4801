#include "State/Threads/BusyThreads.h"
#include "State/Uninstall/UninstallStateTest.h"
#include "Support/Gate.h"

#include <QSignalSpy>

namespace tarvik::test {

namespace {

using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// With listings that a test holds at their end, where they ask for the time.
class UninstallScanTest : public UninstallStateTest {
protected:
    UninstallScanTest() {
        world.host.now = [gate = endOfScan, now = world.host.now] {
            gate->pass();
            return now();
        };
        state = std::make_unique<AppState>(world.host, dialogs);
    }
    ~UninstallScanTest() override {
        endOfScan->open();
        state.reset();
    }

    void listAndHold() {
        endOfScan->close();
        tab().refreshUninstall();
        endOfScan->waitForSomebody();
    }
    void makeApps(int count) {
        for (int number = 0; number < count; ++number) makeApp("App" + std::to_string(number));
    }
    static int measuredBy(const QSignalSpy& batches) {
        int sum = 0;
        for (const auto& arguments : batches) sum += arguments.at(0).toInt();
        return sum;
    }

    const std::shared_ptr<Gate> endOfScan = std::make_shared<Gate>();
};

}  // namespace

TEST_F(UninstallScanTest, ListsAnewWhatAMoveHasChangedMeanwhile) {
    makeApp("Atlas");
    for (const auto tell : {&UninstallState::linksChanged, &UninstallState::refresh}) {
        fs::remove_all(applications / "Late.app");
        listAndHold();
        makeApp("Late");
        (tab().*tell)();
        endOfScan->open();
        settle();
        EXPECT_THAT(listed(), UnorderedElementsAre("Atlas", "Late"));
    }
}

TEST_F(UninstallScanTest, ListsOnceWhenNothingHasChangedMeanwhile) {
    makeApp("Atlas");
    QSignalSpy scans(&tab(), &UninstallState::isScanningUninstallChanged);
    listAndHold();
    endOfScan->open();
    settle();
    EXPECT_EQ(scans.count(), 2);
}

TEST_F(UninstallScanTest, ListsOnceAfterARun) {
    makeApp("Atlas");
    choose("Atlas");
    QSignalSpy scans(&tab(), &UninstallState::isScanningUninstallChanged);
    remove();
    EXPECT_EQ(scans.count(), 2);
}

TEST_F(UninstallScanTest, MeasuresNothingThatHasNotBegunWhenItListsAnew) {
    makeApps(20);
    refresh();
    BusyThreads busyThreads;
    QSignalSpy batches(&tab(), &UninstallState::sizingBatchApplied);
    QSignalSpy ends(&tab(), &UninstallState::sizingEnded);
    tab().startUninstallSizing(tab().uninstallApps());
    listAndHold();
    busyThreads.end();
    spinUntil([&] { return ends.count() == 1; });
    EXPECT_THAT(batches, IsEmpty());
    endOfScan->open();
    settle();
    EXPECT_EQ(measuredBy(batches), 20);
}

TEST_F(UninstallScanTest, TakesWhatHasBegunWhenItListsAnew) {
    // As many as are measured at a time.
    makeApps(6);
    refresh();
    BusyThreads busyThreads(BusyThreads::all() - 1);
    QSignalSpy batches(&tab(), &UninstallState::sizingBatchApplied);
    QSignalSpy ends(&tab(), &UninstallState::sizingEnded);
    tab().startUninstallSizing(tab().uninstallApps());
    BusyThreads::waitForTheLastThread();
    EXPECT_THAT(batches, IsEmpty()) << "it waits to be taken";
    listAndHold();
    spinUntil([&] { return ends.count() == 1; });
    EXPECT_EQ(measuredBy(batches), 6);
}

TEST_F(UninstallScanTest, MeasuresNothingTwiceWhenItIsAskedAnew) {
    makeApps(20);
    refresh();
    BusyThreads busyThreads;
    QSignalSpy batches(&tab(), &UninstallState::sizingBatchApplied);
    tab().startUninstallSizing(tab().uninstallApps());
    tab().startUninstallSizing(tab().uninstallApps());
    busyThreads.end();
    settle();
    EXPECT_EQ(measuredBy(batches), 20);
}

}  // namespace tarvik::test
