#include "Platform/Files/Files.h"
#include "Platform/Machine/TrashCan.h"
#include "Support/Bundles.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "UninstallRun/UninstallRunWorld.h"
#include "UninstallRun/UninstallUndo.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

namespace tarvik::test {

namespace {

using State = UninstallUndo::Item::State;

/// The uninstall of an application whose copy on a drive goes too, with everything on volumes of their own.
class UninstallOnVolumesTest : public testing::Test {
protected:
    void SetUp() override {
        TARVIK_NEEDS_REAL_VOLUMES();
        m_volume.emplace(RealVolume::ext4(world.folder.path(), 4 * megabyte));
        world.volumes->list.push_back({.mountPath = m_volume->path(), .name = "Foo's"});
        copy = *m_volume / "ExternalTarvik/Apps/Foo.app";
        makeBundle(copy, {{"CFBundleIdentifier", "org.example.Foo"}});
        world.plan.candidates.push_back(world.candidate(copy, UninstallCategory::executable));
    }
    /// Fills the drive to its last block.
    void fill() {
        const int file = ::open((*m_volume / "filler").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
        const std::string block(1024, 'x');
        while (::write(file, block.data(), block.size()) > 0) continue;
        ::close(file);
        for (int number = 0; number < 100; ++number) {  // The last blocks take folders only.
            const fs::path folder = *m_volume / ("filler" + std::to_string(number));
            if (::mkdir(folder.c_str(), 0700) != 0) break;
        }
    }
    std::vector<UninstallUndo::Item> putBack(const AppUninstallSession& session) {
        return UninstallUndo::putBack(world.host, session, world.reporter());
    }

    UninstallRunWorld world;
    std::optional<RealVolume> m_volume;
    fs::path copy;
};

}  // namespace

TEST_F(UninstallOnVolumesTest, TrashesEachThingOnItsOwnDriveAndBringsItBack) {
    world.host.trash = makeSystemTrashCan(world.home);
    const std::string before = pictureOf(copy);
    const auto session = world.run();
    ASSERT_EQ(session.movedItems.size(), 2U);
    EXPECT_TRUE(Files::isAtOrBelow(*session.movedItems[0].trashedTo, world.folder.path()));
    ASSERT_TRUE(session.movedItems[1].trashedTo.has_value());
    EXPECT_TRUE(Files::isAtOrBelow(*session.movedItems[1].trashedTo, m_volume->path()));
    EXPECT_FALSE(Files::itemExists(copy));
    for (const auto& item : putBack(session)) EXPECT_EQ(item.state, State::back) << item.reason;
    EXPECT_EQ(pictureOf(copy), before);
}

TEST_F(UninstallOnVolumesTest, TellsOfADriveThatWasUnplugged) {
    world.host.trash = makeSystemTrashCan(world.home);
    const auto session = world.run();
    m_volume->detach();
    world.volumes->list.pop_back();
    const auto items = putBack(session);
    EXPECT_EQ(items[0].state, State::back);
    EXPECT_EQ(items[1].reason, "The drive " + m_volume->path().filename().native() + " is away.");
    EXPECT_FALSE(Files::itemExists(copy.parent_path()));
}

TEST_F(UninstallOnVolumesTest, SetsAsideWhatATrashOfAnotherVolumeRefuses) {
    const std::string before = pictureOf(m_volume->path() / "ExternalTarvik");
    const auto session = world.run();
    EXPECT_EQ(session.movedItems[1].stashedTo, copy.parent_path() / ".TarvikTrash");
    EXPECT_TRUE(session.movedItems[1].succeeded);
    EXPECT_FALSE(Files::itemExists(copy));
    for (const auto& item : putBack(session)) EXPECT_EQ(item.state, State::back) << item.reason;
    EXPECT_EQ(pictureOf(m_volume->path() / "ExternalTarvik"), before);
}

TEST_F(UninstallOnVolumesTest, LeavesWhatIsOnAReadOnlyDrive) {
    const std::string before = pictureOf(copy);
    m_volume->remountReadOnly();
    for (const auto& trash : {makeRootedTrashCan(world.home), makeSystemTrashCan(world.home)}) {
        world.host.trash = trash;
        world.lines.clear();
        const auto session = world.run(false, std::set<std::string>{copy.native()});
        EXPECT_FALSE(session.movedItems[0].succeeded);
        EXPECT_EQ(session.movedItems[0].stashedTo, copy.parent_path() / ".TarvikTrash");
        EXPECT_EQ(world.lines[1], "stash\texecutable\t" + copy.native());
        EXPECT_EQ(pictureOf(copy), before);
        EXPECT_TRUE(UninstallUndo::look(world.host, session).empty());
    }
}

TEST_F(UninstallOnVolumesTest, LeavesWhatAFullDriveCannotSetAside) {
    const std::string before = pictureOf(copy);
    fill();
    for (const auto& trash : {makeRootedTrashCan(world.home), makeSystemTrashCan(world.home)}) {
        world.host.trash = trash;
        const auto session = world.run(false, std::set<std::string>{copy.native()});
        EXPECT_FALSE(session.movedItems[0].succeeded);
        EXPECT_EQ(pictureOf(copy), before);
    }
}

TEST_F(UninstallOnVolumesTest, LeavesWhatSomethingIsMountedOn) {
    world.plan.candidates.push_back(world.candidate(m_volume->path(), UninstallCategory::caches));
    const auto session = world.run(false, std::set<std::string>{m_volume->path().native()});
    EXPECT_FALSE(session.movedItems[0].succeeded);
    EXPECT_EQ(world.lines[1], "stays\tcaches\t" + m_volume->path().native() + "\tsomething is mounted there");
    EXPECT_TRUE(Files::itemExists(copy));
}

TEST_F(UninstallOnVolumesTest, NeverPutsAnythingBackThroughAnotherVolume) {
    world.host.trash = makeSystemTrashCan(world.home);
    const fs::path data = world.library("Caches/Foo");
    world.addData(data);
    const auto session = world.run();
    // The folder that held it has been moved to the drive meanwhile.
    fs::remove_all(data.parent_path());
    makeFolder(*m_volume / "Caches");
    makeLink(data.parent_path(), *m_volume / "Caches");
    const auto items = putBack(session);
    EXPECT_EQ(items.back().reason, "The way to " + data.native() + " leads somewhere else by now.");
    EXPECT_TRUE(Files::names(*m_volume / "Caches").empty());
}

}  // namespace tarvik::test
