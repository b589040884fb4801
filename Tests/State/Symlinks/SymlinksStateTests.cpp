#include "Platform/Storage/SizeCalculator.h"
#include "State/EventLoop.h"
#include "State/StateWorld.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SymlinksStateTest : public StateWorld {
protected:
    /// A link in the home folder to a file on the drive.
    void link(const char* name, std::size_t bytes) {
        makeFileOfSize(target(name), bytes);
        makeLink(world.home / name, target(name));
    }
    fs::path target(const char* name) const { return world.foldersOnDrive() / name; }

    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const SymlinkEntry& each : symlinksTab().symlinks()) names.push_back(each.location.filename());
        return names;
    }
};

}  // namespace

TEST_F(SymlinksStateTest, AreNoneAtFirst) {
    link("Music", 1);
    EXPECT_THAT(symlinksTab().symlinks(), IsEmpty());
}

TEST_F(SymlinksStateTest, AreListedAndMeasuredByARefreshOfAll) {
    link("Music", 50'000);
    makeLink(world.folder / "Applications/Gone.app", "/nowhere/Gone.app");
    begin();
    const SymlinkEntry gone{.id = (world.folder / "Applications/Gone.app").native(),
                            .location = world.folder / "Applications/Gone.app",
                            .target = "/nowhere/Gone.app"};
    const SymlinkEntry music{.id = (world.home / "Music").native(),
                             .location = world.home / "Music",
                             .target = target("Music"),
                             .isValid = true,
                             .targetSize = SizeCalculator::size(world.host, target("Music"))};
    EXPECT_GE(music.targetSize, 50'000);
    EXPECT_THAT(symlinksTab().symlinks(), ElementsAre(gone, music));
}

TEST_F(SymlinksStateTest, AreRefreshedOnTheirOwnEvenWhileApplicationsAreScanned) {
    link("Music", 1);
    appsTab().refreshApps();
    state->refreshAll();
    settle();
    EXPECT_THAT(symlinksTab().symlinks(), IsEmpty()) << "a refresh of all is dropped";
    symlinksTab().refreshSymlinks();
    settle();
    EXPECT_THAT(names(), ElementsAre("Music"));
    EXPECT_EQ(volumes->askedCount(), 0) << "only the links";
}

TEST_F(SymlinksStateTest, FollowMovesAndRestores) {
    begin();
    makeFolders({"Music"});
    foldersTab().moveArbitraryFolder(FilePath(world.home / "Music"));
    settle();
    ASSERT_THAT(names(), ElementsAre("Music"));
    state->restoreSymlink(FilePath(symlinksTab().symlinks()[0].location));
    settle();
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(SymlinksStateTest, AreListedWithTheSizesOfBeforeWhileTheyAreMeasured) {
    link("Music", 50'000);
    begin();
    const std::int64_t before = symlinksTab().symlinks()[0].targetSize;
    link("Photos", 50'000);
    std::vector<std::int64_t> sizes;
    QObject::connect(symlinksTab().symlinksModel(), &QAbstractItemModel::dataChanged, [&] {
        for (const SymlinkEntry& each : symlinksTab().symlinks()) sizes.push_back(each.targetSize);
    });
    symlinksTab().refreshSymlinks();
    settle();
    EXPECT_THAT(sizes, ElementsAre(before, symlinksTab().symlinks()[1].targetSize))
        << "only the new one was measured later";
    EXPECT_GT(symlinksTab().symlinks()[1].targetSize, 0);
}

TEST_F(SymlinksStateTest, DoNotKeepTheSizeOfAnotherTarget) {
    link("Music", 50'000);
    begin();
    fs::remove(world.home / "Music");
    makeLink(world.home / "Music", "/nowhere/Music");
    std::vector<std::int64_t> sizes;
    QObject::connect(symlinksTab().symlinksModel(), &QAbstractItemModel::dataChanged,
                     [&] { sizes.push_back(symlinksTab().symlinks()[0].targetSize); });
    symlinksTab().refreshSymlinks();
    settle();
    EXPECT_THAT(sizes, ElementsAre(0));
}

TEST_F(SymlinksStateTest, AreLookedAtOnceMoreWhenSomebodyAsksDuringAScan) {
    link("Music", 1);
    bool hasAsked = false;
    QObject::connect(symlinksTab().symlinksModel(), &QAbstractItemModel::rowsInserted, [&] {
        if (std::exchange(hasAsked, true)) return;
        link("Photos", 50'000);
        symlinksTab().refreshSymlinks();
    });
    symlinksTab().refreshSymlinks();
    settle();
    EXPECT_THAT(names(), ElementsAre("Music", "Photos"));
    EXPECT_GE(symlinksTab().symlinks()[1].targetSize, 50'000) << "the scan that was cut short is not the last one";
}

TEST_F(SymlinksStateTest, AreListedOnceForEachRequest) {
    link("Music", 1);
    bool isListed = false;
    QObject::connect(symlinksTab().symlinksModel(), &QAbstractItemModel::rowsInserted, [&] {
        if (!std::exchange(isListed, true)) link("Photos", 1);
    });
    symlinksTab().refreshSymlinks();
    settle();
    EXPECT_THAT(names(), ElementsAre("Music")) << "what has come since the listing is not looked for";
    EXPECT_GT(symlinksTab().symlinks()[0].targetSize, 0);
    symlinksTab().refreshSymlinks();
    settle();
    EXPECT_THAT(names(), ElementsAre("Music", "Photos"));
}

TEST_F(SymlinksStateTest, AreWaitedForByTheDestructor) {
    link("Music", 1);
    symlinksTab().refreshSymlinks();
    state.reset();
}

TEST_F(SymlinksStateTest, AreShownToTheViewsInRoles) {
    link("Music", 1000);
    begin();
    auto& model = *symlinksTab().symlinksModel();
    const auto value = [&](const char* role) { return model.data(model.index(0, 0), model.roleNames().key(role)); };
    EXPECT_EQ(value("location").value<FilePath>().path, world.home / "Music");
    EXPECT_EQ(value("locationText").toString().toStdString(), (world.home / "Music").native());
    EXPECT_EQ(value("targetText").toString().toStdString(), target("Music").native());
    EXPECT_EQ(value("isValid"), true);
    EXPECT_EQ(value("sizeText").toString().toStdString(),
              SizeCalculator::format(symlinksTab().symlinks()[0].targetSize));
}

}  // namespace tarvik::test
