#include "Platform/Files/ListedFolder.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace tarvik {
namespace {

using Files::ItemType;
using testing::ElementsAre;
using testing::Pair;

std::vector<std::pair<std::string, ItemType>> entriesOf(const ListedFolder& folder) {
    std::vector<std::pair<std::string, ItemType>> entries;
    for (std::size_t index = 0; index < folder.size(); ++index)
        entries.emplace_back(folder.name(index), folder.type(index));
    return entries;
}

TEST(ListedFolder, HoldsVisibleEntriesInOrderWithTheirTypes) {
    TARVIK_NEEDS_NAMES_OF_ANY_BYTES();
    const test::TemporaryFolder folder;
    test::makeFile(folder / "b");
    test::makeFolder(folder / "a");
    test::makeLink(folder / "link", "a");
    test::makePipe(folder / "pipe");
    test::makeFile(folder / ".hidden");
    test::makeFile(folder / "\xFF");
    const auto listed = ListedFolder::at(folder.path());
    ASSERT_TRUE(listed);
    EXPECT_THAT(entriesOf(*listed), ElementsAre(Pair("a", ItemType::folder), Pair("b", ItemType::regular),
                                                Pair("link", ItemType::symbolicLink), Pair("pipe", ItemType::pipe),
                                                Pair("\xFF", ItemType::regular)));
}

TEST(ListedFolder, FollowsALinkToAFolderAndKnowsItAgain) {
    const test::TemporaryFolder folder;
    test::makeFile(folder / "a/file");
    test::makeFolder(folder / "b");
    test::makeLink(folder / "link", "a");
    const auto top = ListedFolder::at(folder.path());
    ASSERT_TRUE(top);
    const auto through = ListedFolder::in(top->handle(), "link");
    ASSERT_TRUE(through);
    EXPECT_THAT(entriesOf(*through), ElementsAre(Pair("file", ItemType::regular)));
    EXPECT_TRUE(through->isSameAs(*ListedFolder::at(folder / "a")));
    EXPECT_FALSE(through->isSameAs(*ListedFolder::at(folder / "b")));
}

TEST(ListedFolder, IsNothingWhereThereIsNoFolder) {
    const test::TemporaryFolder folder;
    test::makeFile(folder / "file");
    test::makePipe(folder / "pipe");
    test::makeLink(folder / "dangling", "missing");
    test::makeLink(folder / "loop", "loop");
    for (const char* name : {"file", "pipe", "dangling", "loop", "missing"})
        EXPECT_FALSE(ListedFolder::at(folder / name)) << name;
}

}  // namespace
}  // namespace tarvik
