#include "Support/Tree.h"
#include "UninstallRun/UninstallRunWorld.h"
#include "UninstallRun/UninstallSearch.h"

#include <gtest/gtest.h>

namespace tarvik::test {

namespace {

bool isTrashName(const std::string& name, const std::string& own) {
    return UninstallSearch::isTrashName(name, own);
}

}  // namespace

TEST(UninstallSearch, KnowsTheNamesThatATrashGives) {
    for (const char* name : {"Foo.app", "Foo 2.app", "Foo.12.app", "Foo 10.45.12.app", "Foo 10.45.12 AM.app"})
        EXPECT_TRUE(isTrashName(name, "Foo.app")) << name;
    for (const char* name : {"Foo", "Foo.txt", "Foo2.app", "Foo two.app", "Bar 2.app", "Foo .app", "Fo 2.app", ".app"})
        EXPECT_FALSE(isTrashName(name, "Foo.app")) << name;
    EXPECT_TRUE(isTrashName(".foo 2", ".foo"));
    EXPECT_TRUE(isTrashName("Foo 2.app 2", "Foo.app 2"));
    const std::string longName(250, 'x');
    EXPECT_TRUE(isTrashName(longName.substr(0, 243) + ".2.txt", longName + ".txt"));
    EXPECT_FALSE(isTrashName(longName.substr(0, 100) + ".2.txt", longName + ".txt"));
}

TEST(UninstallSearch, TakesAnItemOfAnotherNumberByItsNameAlone) {
    const UninstallRunWorld world;
    const fs::path trash = world.home / ".Trash";
    const fs::path place = world.library("Caches/Foo");
    for (const char* name : {"Bar", "Foo 2", "Zoo"}) makeFile(trash / name, "same");
    const auto time = fs::last_write_time(trash / "Bar");
    for (const char* name : {"Foo 2", "Zoo"}) fs::last_write_time(trash / name, time);
    // As a volume tells of it that knows no time of its making, and numbers items anew.
    auto identity = ItemIdentity::of(trash / "Zoo").value();
    identity.born.reset();
    EXPECT_EQ(UninstallSearch(world.host).inTrash(place, identity), trash / "Zoo");
    identity.inode = 1;
    EXPECT_EQ(UninstallSearch(world.host).inTrash(place, identity), trash / "Foo 2");
    fs::remove(trash / "Foo 2");
    EXPECT_EQ(UninstallSearch(world.host).inTrash(place, identity), std::nullopt);
}

}  // namespace tarvik::test
