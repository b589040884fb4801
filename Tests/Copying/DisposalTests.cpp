#include "Copying/FileStash.h"
#include "Copying/MoverStasher.h"
#include "Platform/Files/Files.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

namespace tarvik::test {

namespace {

class DisposalTest : public testing::Test {
protected:
    fs::path fallback(const std::string& name) const { return world.home / ".TarvikTrash" / name; }

    World world;
    fs::path item = world.home / "Foo.app";
};

}  // namespace

TEST_F(DisposalTest, GoesToTheTrash) {
    makeFile(item / "file");
    MoverStasher::stash(world.host, item);
    EXPECT_FALSE(Files::itemExists(item));
    EXPECT_TRUE(Files::exists(world.trash->folder / "Foo.app/file"));
}

TEST_F(DisposalTest, FallsBackToAFolderBesideTheItem) {
    world.trash->refuses = true;
    makeFile(item / "file");
    MoverStasher::stash(world.host, item);
    EXPECT_TRUE(Files::exists(fallback("Foo.app-1794764743/file")));
    makeFile(item / "other");
    FileStash::moveAside(world.host, item, "conflict");
    EXPECT_TRUE(Files::exists(fallback("Foo.app-conflict-2026-11-15T174543Z/other")));
}

TEST_F(DisposalTest, NeverReplacesWhatWasDisposedOfBefore) {
    world.trash->refuses = true;
    makeFile(item, "first");
    MoverStasher::stash(world.host, item);
    makeFile(item, "second");
    MoverStasher::stash(world.host, item);
    EXPECT_EQ(contentOf(fallback("Foo.app-1794764743")), "first");
    EXPECT_EQ(contentOf(item), "second");
}

TEST_F(DisposalTest, TakesADanglingLinkOnlyWhenItIsInTheWay) {
    makeLink(item, "nowhere");
    MoverStasher::stash(world.host, item);
    EXPECT_TRUE(Files::isSymbolicLink(item));
    FileStash::moveAside(world.host, item, "conflict");
    EXPECT_FALSE(Files::itemExists(item));
    EXPECT_TRUE(Files::isSymbolicLink(world.trash->folder / "Foo.app"));
}

TEST_F(DisposalTest, DoesNothingWhenNothingIsThere) {
    MoverStasher::stash(world.host, item);
    FileStash::moveAside(world.host, item, "conflict");
    EXPECT_FALSE(Files::itemExists(world.trash->folder));
    EXPECT_TRUE(world.namesAtHome().empty());
}

TEST_F(DisposalTest, CutsANameThatWouldGrowTooLong) {
    world.trash->refuses = true;
    std::string name;
    while (name.size() < 252) name += "é";
    makeFile(world.home / name, "long");
    MoverStasher::stash(world.host, world.home / name);
    const auto names = Files::names(world.home / ".TarvikTrash");
    ASSERT_EQ(names.size(), 1U);
    EXPECT_LE(names[0].size(), 255U);
    EXPECT_TRUE(names[0].ends_with("é-1794764743"));
}

TEST_F(DisposalTest, LeavesTheItemWhereNothingCanBeWritten) {
    world.trash->refuses = true;
    makeFile(item, "stays");
    makeFile(world.home / ".TarvikTrash", "a file in the way");
    MoverStasher::stash(world.host, item);
    EXPECT_EQ(contentOf(item), "stays");
}

}  // namespace tarvik::test
