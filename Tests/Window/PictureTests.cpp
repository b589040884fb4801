#include "Window/WindowTest.h"

namespace tarvik::test {

namespace {

/// The window in each of its states, in the smallest and in a comfortable size, for people to look at.
class Picture : public WindowTest, public testing::WithParamInterface<QSize> {
protected:
    Picture() {
        for (const char* folder : {"Downloads", "Music/Logic Pro Library.bundle", "Library/Application Support/Claude",
                                   "Library/Developer/Xcode/DerivedData"})
            makeFolder(world.home / folder);
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
    WindowUnderTest& open() { return WindowTest::open(GetParam()); }
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
    move(makePhotos(name));
    EXPECT_TRUE(window.waitUntilShown("sourceLink"));
}

}  // namespace

}  // namespace tarvik::test
