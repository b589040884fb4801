#include "Platform/Files/Files.h"
#include "Platform/Files/StoredSpelling.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <string>
#include <unistd.h>
#include <vector>

namespace tarvik::test {

namespace {

/// What is found when `name` leads to the item that the folder lists as `items`.
std::string found(std::vector<std::string> names, const std::string& name, const std::vector<std::string>& items) {
    return StoredSpelling::amongNames(std::move(names), name, [&](const std::string& other) {
        return std::find(items.begin(), items.end(), other) != items.end();
    });
}

}  // namespace

TEST(StoredSpelling, IsTheNameThatTheFolderLists) {
    EXPECT_EQ(found({"Bar.app", "Foo.app"}, "foo.app", {"Foo.app"}), "Foo.app");
    // Composed and decomposed.
    EXPECT_EQ(found({"Cafe\u0301.app", "Foo.app"}, "Caf\u00E9.app", {"Cafe\u0301.app"}), "Cafe\u0301.app");
}

TEST(StoredSpelling, IsTheTypedOneWhereItIsListed) {
    EXPECT_EQ(found({"Foo", "foo"}, "foo", {"Foo", "foo"}), "foo");
}

TEST(StoredSpelling, TellsHardLinksApartByTheirLetters) {
    EXPECT_EQ(found({"Foo", "bar"}, "foo", {"Foo", "bar"}), "Foo");
    EXPECT_EQ(found({"Foo", "bar"}, "other", {"Foo", "bar"}), "other");
    EXPECT_EQ(found({"Foo", "bar"}, "gone", {}), "gone");
}

TEST(StoredSpelling, OfAnOrdinaryPathIsThePath) {
    const TemporaryFolder folder;
    makeFile(folder / "a/Cafe\u0301/b");
    makeLink(folder / "link", "a");
    for (const char* path : {"a/Cafe\u0301/b", "link/Cafe\u0301/b", "a/missing/c", "A/b"})
        EXPECT_EQ(StoredSpelling::of(folder / path), folder / path);
    EXPECT_EQ(StoredSpelling::of("/"), "/");
    EXPECT_EQ(StoredSpelling::of(""), "");
}

TEST(StoredSpelling, HardLinksAreTwoNames) {
    const TemporaryFolder folder;
    makeFile(folder / "one");
    ASSERT_EQ(::link((folder / "one").c_str(), (folder / "two").c_str()), 0);
    EXPECT_FALSE(StoredSpelling::areOneName(folder / "one", folder / "two"));
    EXPECT_TRUE(StoredSpelling::areOneName(folder / "one", folder / "./one"));
    // So neither ever replaces the other.
    EXPECT_THROW(Files::rename(folder / "one", folder / "two"), FileError);
    EXPECT_TRUE(Files::itemExists(folder / "one"));
}

}  // namespace tarvik::test
