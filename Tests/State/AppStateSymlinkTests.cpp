#include "Platform/SizeCalculator.h"
#include "State/EventLoop.h"
#include "State/StateWorld.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AppStateSymlinks : public StateWorld {
protected:
    /// A link in the home folder to a file on the drive.
    void link(const char* name, std::size_t bytes) {
        makeFileOfSize(target(name), bytes);
        makeLink(world.home / name, target(name));
    }
    fs::path target(const char* name) const { return world.foldersOnDrive() / name; }

    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const SymlinkEntry& each : state->symlinks()) names.push_back(each.location.filename());
        return names;
    }
};

}  // namespace

TEST_F(AppStateSymlinks, AreNoneAtFirst) {
    link("Music", 1);
    EXPECT_THAT(state->symlinks(), IsEmpty());
}

TEST_F(AppStateSymlinks, AreListedAndMeasuredByARefreshOfAll) {
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
    EXPECT_THAT(state->symlinks(), ElementsAre(gone, music));
}

TEST_F(AppStateSymlinks, AreRefreshedOnTheirOwnEvenWhileApplicationsAreScanned) {
    link("Music", 1);
    state->refreshApps();
    state->refreshAll();
    settle();
    EXPECT_THAT(state->symlinks(), IsEmpty()) << "a refresh of all is dropped";
    state->refreshSymlinks();
    settle();
    EXPECT_THAT(names(), ElementsAre("Music"));
    EXPECT_EQ(volumes->askedCount(), 0) << "only the links";
}

TEST_F(AppStateSymlinks, FollowMovesAndRestores) {
    begin();
    makeFolders({"Music"});
    state->moveArbitraryFolder(FilePath(world.home / "Music"));
    settle();
    ASSERT_THAT(names(), ElementsAre("Music"));
    state->restoreSymlink(FilePath(state->symlinks()[0].location));
    settle();
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(AppStateSymlinks, AreListedWithTheSizesOfBeforeWhileTheyAreMeasured) {
    link("Music", 50'000);
    begin();
    const std::int64_t before = state->symlinks()[0].targetSize;
    link("Photos", 50'000);
    std::vector<std::int64_t> sizes;
    QObject::connect(state->symlinksModel(), &QAbstractItemModel::dataChanged, [&] {
        for (const SymlinkEntry& each : state->symlinks()) sizes.push_back(each.targetSize);
    });
    state->refreshSymlinks();
    settle();
    EXPECT_THAT(sizes, ElementsAre(before, state->symlinks()[1].targetSize)) << "only the new one was measured later";
    EXPECT_GT(state->symlinks()[1].targetSize, 0);
}

TEST_F(AppStateSymlinks, DoNotKeepTheSizeOfAnotherTarget) {
    link("Music", 50'000);
    begin();
    fs::remove(world.home / "Music");
    makeLink(world.home / "Music", "/nowhere/Music");
    std::vector<std::int64_t> sizes;
    QObject::connect(state->symlinksModel(), &QAbstractItemModel::dataChanged,
                     [&] { sizes.push_back(state->symlinks()[0].targetSize); });
    state->refreshSymlinks();
    settle();
    EXPECT_THAT(sizes, ElementsAre(0));
}

TEST_F(AppStateSymlinks, AreLookedAtOnceMoreWhenSomebodyAsksDuringAScan) {
    link("Music", 1);
    bool hasAsked = false;
    QObject::connect(state->symlinksModel(), &QAbstractItemModel::rowsInserted, [&] {
        if (std::exchange(hasAsked, true)) return;
        link("Photos", 50'000);
        state->refreshSymlinks();
    });
    state->refreshSymlinks();
    settle();
    EXPECT_THAT(names(), ElementsAre("Music", "Photos"));
    EXPECT_GE(state->symlinks()[1].targetSize, 50'000) << "the scan that was cut short is not the last one";
}

TEST_F(AppStateSymlinks, AreWaitedForByTheDestructor) {
    link("Music", 1);
    state->refreshSymlinks();
    state.reset();
}

TEST_F(AppStateSymlinks, AreShownToTheViewsInRoles) {
    link("Music", 1000);
    begin();
    auto& model = *state->symlinksModel();
    const auto value = [&](const char* role) { return model.data(model.index(0, 0), model.roleNames().key(role)); };
    EXPECT_EQ(value("location").value<FilePath>().path, world.home / "Music");
    EXPECT_EQ(value("locationText").toString().toStdString(), (world.home / "Music").native());
    EXPECT_EQ(value("targetText").toString().toStdString(), target("Music").native());
    EXPECT_EQ(value("isValid"), true);
    EXPECT_EQ(value("sizeText").toString().toStdString(), SizeCalculator::format(state->symlinks()[0].targetSize));
}

}  // namespace tarvik::test
