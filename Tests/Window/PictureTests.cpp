#include "Window/WindowTest.h"

#include <QColor>
#include <QImage>
#include <QTest>

namespace tarvik::test {

namespace {

/// The window in each of its states, in the smallest and in a comfortable size, for people to look at.
class Picture : public WindowTest, public testing::WithParamInterface<QSize> {
protected:
    Picture() {
        for (const char* folder : {"Downloads", "Music/Logic Pro Library.bundle", "Library/Application Support/Claude",
                                   "Library/Developer/Xcode/DerivedData"})
            makeFolder(world.home / folder);
        makeFileOfSize(world.home / "Downloads/Film.mov", 12'345'678);
        addVolume("/", "Macintosh HD").isInternal = true;
    }
    void TearDown() override {
        if (opened) opened->savePicture(name() + "-" + std::to_string(GetParam().width()));
        letCopyEnd();
        opened.reset();
    }
    static std::string name() {
        const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
        return test.substr(0, test.find('/'));
    }
    WindowUnderTest& open() { return openFolders(GetParam()); }

    /// The points that are not blank in the blank strip of the jobs panel between the icons and the names of its rows.
    int strayColours() {
        QTest::qWait(300);  // Until what moves has come to rest.
        const QImage picture = opened->window().grabWindow();
        const int top = static_cast<int>(opened->item("jobList").mapToScene({}).y());
        const int right = static_cast<int>(opened->item("jobList/transferLabel").mapToScene({}).x());
        int count = 0;
        for (int y = top; y < picture.height(); ++y)
            for (int x = right - 6; x < right - 1; ++x)
                if (picture.pixelColor(x, y) != QColor(Qt::white)) ++count;
        return count;
    }
};

INSTANTIATE_TEST_SUITE_P(Sizes, Picture, testing::Values(small, large),
                         [](const auto& parameter) { return std::to_string(parameter.param.width()); });

TEST_P(Picture, Fresh) {
    EXPECT_TRUE(open().waitUntilShown("quickPick-Downloads"));
}

TEST_P(Picture, NoDrives) {
    world.volumes->list.clear();
    EXPECT_TRUE(open().waitUntilShown("noDrivesText"));
}

TEST_P(Picture, SourceChosen) {
    auto& window = open();
    window.chooseFolder(makePhotos());
    EXPECT_TRUE(window.waitForText("sourceSize", "5 MB"));
}

TEST_P(Picture, DialogOpen) {
    auto& window = open();
    window.chooseFolder(makePhotos());
    EXPECT_TRUE(window.waitUntil([&] { return window.isEnabled("moveButton"); }));
    window.click("moveButton");
    EXPECT_TRUE(window.waitUntilShown("alertDialog"));
}

TEST_P(Picture, Running) {
    holdCopies();
    auto& window = open();
    startMove(makePhotos());
    EXPECT_TRUE(window.waitForText("job-Photos/transferBytes", "3 MB of 5 MB"));
}

TEST_P(Picture, Done) {
    auto& window = open();
    move(makePhotos());
    EXPECT_TRUE(window.waitUntilShown("job-Photos/moveBackButton"));
}

TEST_P(Picture, Failed) {
    world.withDitto("echo 'ditto: 2024/Lake.raw: Input/output error' >&2; exit 1");
    auto& window = open();
    move(makePhotos());
    EXPECT_TRUE(window.waitUntilShown("job-Photos/transferFailure"));
}

TEST_P(Picture, LongNames) {
    addVolume("/Volumes/Long", "A drive with a name that is far longer than any card");
    auto& window = open();
    window.state().selectDrive(QString::fromStdString(backup.native()));
    const std::string name = "A folder whose name\nhas a line break in it and then goes on " + std::string(120, 'x');
    const auto photos = makePhotos(name);
    move(photos);
    window.chooseFolder(photos);
    EXPECT_TRUE(window.waitUntilShown("sourceLink"));
    EXPECT_EQ(strayColours(), 0) << "what the panel hides must not shine through";
}

TEST_P(Picture, ManyJobs) {
    holdCopies();
    auto& window = open();
    std::vector<MoveJob> jobs;
    for (int number = 1; number <= 1000; ++number) {
        const auto name = "Project " + std::to_string(number);
        jobs.emplace_back(name, world.home / name, world.foldersOnDrive() / name, JobStatus::pending(),
                          std::int64_t{number} * 12'345'678, 0);
    }
    makePhotos("Project 2");
    window.state().runJobs(std::move(jobs), backup.native(), backup, false);
    EXPECT_TRUE(window.waitForText("job-Project 2/transferStatus", "Copying"));
    EXPECT_EQ(window.text("job-Project 1/transferStatus"), "Failed");
    EXPECT_EQ(window.text("job-Project 3/transferBytes"), "37 MB");
    EXPECT_EQ(window.text("jobsSummary"), "2 of 1000");
    EXPECT_LE(window.item("jobsPanel").height(), GetParam().height() * 0.45 + 1);
    EXPECT_LT(window.item("jobList").property("contentItem").value<QQuickItem*>()->childItems().size(), 50)
        << "only the rows that are seen are made";
}

TEST_P(Picture, NothingFound) {
    fs::remove_all(world.home);
    makeFolder(world.home);
    world.volumes->list.clear();
    EXPECT_TRUE(open().waitUntilShown("noQuickPicks"));
}

TEST_P(Picture, QuitQuestion) {
    holdCopies();
    auto& window = open();
    startMove(makePhotos());
    EXPECT_FALSE(window.state().mayClose());
    EXPECT_TRUE(window.waitUntilShown("alertDialog"));
}

}  // namespace

}  // namespace tarvik::test
