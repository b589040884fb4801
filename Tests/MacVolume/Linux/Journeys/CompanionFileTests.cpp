// Attributes on exFAT, which keeps them in files that stand beside their items.
#include "MacMachine.h"
#include "Platform/Files/Files.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <sys/xattr.h>

namespace tarvik::test {

namespace {

class CompanionFiles : public OnMacVolumes {
protected:
    void SetUp() override {
        OnMacVolumes::SetUp();
        if (!mac) return;
        photos = mac->atHome("Photos");
        makeFile(photos / "2025/lake.raw", "water");
        makeFile(photos / "plain.txt", "text");
        tag(photos / "2025/lake.raw", "blue");
        makeOld(photos);
        onCard = mac->exFat / "ExternalTarvik/Folders/Photos";
    }

    static void tag(const fs::path& item, const std::string& color) {
        if (::setxattr(item.c_str(), "user.color", color.data(), color.size(), 0) != 0)
            throw std::system_error(errno, std::generic_category(), item);
    }
    static std::string tagOf(const fs::path& item) {
        char color[32];
        const ssize_t length = ::getxattr(item.c_str(), "user.color", color, sizeof color);
        return length < 0 ? "none" : std::string(color, static_cast<std::size_t>(length));
    }

    fs::path photos, onCard;
};

}  // namespace

TEST_F(CompanionFiles, CountForNothingOnTheWayThereAndBack) {
    ASSERT_EQ(mac->moveFolder(photos, mac->exFat), "moved");
    EXPECT_TRUE(Files::itemExists(onCard / "2025/._lake.raw"));
    makeOld(onCard);
    EXPECT_EQ(tagOf(photos / "2025/lake.raw"), "blue");
    ASSERT_EQ(mac->moveBack(photos), "back");
    EXPECT_EQ(contentOf(photos / "2025/lake.raw"), "water");
    EXPECT_EQ(tagOf(photos / "2025/lake.raw"), "blue");
    EXPECT_FALSE(Files::itemExists(onCard));
}

TEST_F(CompanionFiles, ThatComeWhileTheFolderIsOnTheDriveComeBackAsAttributes) {
    ASSERT_EQ(mac->moveFolder(photos, mac->exFat), "moved");
    tag(photos / "plain.txt", "red");
    tag(photos / "2025/.", "green");
    EXPECT_TRUE(Files::itemExists(onCard / "._plain.txt"));
    makeOld(onCard);
    ASSERT_EQ(mac->moveBack(photos), "back");
    EXPECT_EQ(tagOf(photos / "plain.txt"), "red");
    EXPECT_EQ(tagOf(photos / "2025"), "green");
}

TEST_F(CompanionFiles, ThatBelongToNoItemAreItems) {
    ASSERT_EQ(mac->moveFolder(photos, mac->exFat), "moved");
    makeFile(onCard / "._lonely", "precious");
    makeOld(onCard);
    ASSERT_EQ(mac->moveBack(photos), "back");
    EXPECT_EQ(contentOf(photos / "._lonely"), "precious");
}

TEST_F(CompanionFiles, AreNoObstacleToARemoval) {
    const fs::path folder = mac->exFat / "Old";
    makeFile(folder / "a", "1");
    makeFile(folder / "b", "2");
    tag(folder / "a", "red");
    tag(folder / "b", "blue");
    Files::removeItem(folder);
    EXPECT_FALSE(Files::itemExists(folder));
}

}  // namespace tarvik::test
