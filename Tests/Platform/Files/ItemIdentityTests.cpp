#include "Platform/Files/ItemIdentity.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

namespace tarvik {

using test::makeFile;
using test::makeLink;

TEST(ItemIdentity, TellsAnItemFromTheNextOneOfItsNumber) {
    const ItemIdentity item{.type = Files::ItemType::regular, .inode = 5, .size = 3, .changed = 10, .born = 4};
    const auto with = [&](const auto& change) {
        ItemIdentity other = item;
        change(other);
        return item.isSame(other);
    };
    EXPECT_TRUE(with([](ItemIdentity& other) { other.changed = 11; }));
    EXPECT_TRUE(with([](ItemIdentity& other) { other.inode = 6; }));
    EXPECT_TRUE(with([](ItemIdentity& other) { other.born.reset(); }));
    EXPECT_FALSE(with([](ItemIdentity& other) { other.born = 5; }));
    EXPECT_FALSE(with([](ItemIdentity& other) { other.type = Files::ItemType::folder; }));
    EXPECT_FALSE(with([](ItemIdentity& other) { other.inode = 6, other.changed = 11; }));
    EXPECT_FALSE(with([](ItemIdentity& other) { other.born.reset(), other.changed = 11; }));
}

TEST(ItemIdentity, StaysWithAnItemThatIsRenamed) {
    const test::TemporaryFolder folder;
    makeFile(folder / "a/file");
    makeLink(folder / "link", "nowhere");
    const auto tree = ItemIdentity::of(folder / "a");
    const auto link = ItemIdentity::of(folder / "link");
    ASSERT_TRUE(tree && link);
    EXPECT_EQ(tree->type, Files::ItemType::folder);
    EXPECT_EQ(link->type, Files::ItemType::symbolicLink);
    EXPECT_EQ(tree->inode, Files::info(folder / "a")->inode);
    fs::rename(folder / "a", folder / "b");
    makeFile(folder / "b/another");
    EXPECT_TRUE(tree->isSame(*ItemIdentity::of(folder / "b")));
    fs::create_directory(folder / "a");
    EXPECT_FALSE(tree->isSame(*ItemIdentity::of(folder / "a")));
    EXPECT_EQ(ItemIdentity::of(folder / "gone"), std::nullopt);
}

}  // namespace tarvik
