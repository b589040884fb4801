// Attributes on exFAT, which keeps them in files that stand beside their items.
#include "Backups/BackupPlan.h"
#include "MacMachine.h"
#include "Platform/Files/Files.h"
#include "Support/Tree.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <sys/xattr.h>

namespace tarvik::test {

namespace {

/// What becomes of such a file where the copy goes to a volume with a place for attributes: ditto(1) says that it
/// stores attributes in such files where there is none, and nothing of what it does with files that it finds.
enum class Tool { leavesThemOut, copiesThemToo };

class CompanionFiles : public OnMacVolumes, public testing::WithParamInterface<Tool> {
protected:
    void SetUp() override {
        OnMacVolumes::SetUp();
        if (!mac) return;
        if (GetParam() == Tool::leavesThemOut) leaveThemOut();
        photos = mac->atHome("Photos");
        makeFile(photos / "2025/lake.raw", "water");
        makeFile(photos / "plain.txt", "text");
        tag(photos / "2025/lake.raw", "blue");
        makeOld(photos);
        onCard = mac->exFat / "ExternalTarvik/Folders/Photos";
    }

    /// The tool of this build copies attributes, and such files as any others.
    void leaveThemOut() {
        const fs::path tool = mac->folder / "ditto";
        makeFile(tool, fmt::format(R"(#!/bin/sh
'{}' "$@" || exit
for copy; do :; done
case $copy in '{}'/*) exit ;; esac
find "$copy" -name '._*' | while read -r file; do
    item=${{file%/*}}/${{file##*/._}}
    [ ! -e "$item" ] || rm "$file"
done
)",
                                   mac->host.tools.ditto.native(), mac->exFat.path().native()));
        fs::permissions(tool, fs::perms::all);
        mac->host.tools.ditto = tool;
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

INSTANTIATE_TEST_SUITE_P(Tools, CompanionFiles, testing::Values(Tool::leavesThemOut, Tool::copiesThemToo),
                         [](const auto& parameter) {
                             return parameter.param == Tool::leavesThemOut ? "LeavesThemOut" : "CopiesThemToo";
                         });

}  // namespace

TEST_P(CompanionFiles, CountForNothingOnTheWayThereAndBack) {
    ASSERT_EQ(mac->moveFolder(photos, mac->exFat), "moved");
    EXPECT_TRUE(Files::itemExists(onCard / "2025/._lake.raw"));
    makeOld(onCard);
    EXPECT_EQ(tagOf(photos / "2025/lake.raw"), "blue");
    ASSERT_EQ(mac->moveBack(photos), "back");
    EXPECT_EQ(contentOf(photos / "2025/lake.raw"), "water");
    EXPECT_EQ(tagOf(photos / "2025/lake.raw"), "blue");
    EXPECT_FALSE(Files::itemExists(onCard));
}

TEST_P(CompanionFiles, ThatComeWhileTheFolderIsOnTheDriveComeBackAsAttributes) {
    ASSERT_EQ(mac->moveFolder(photos, mac->exFat), "moved");
    tag(photos / "plain.txt", "red");
    tag(photos / "2025/.", "green");
    EXPECT_TRUE(Files::itemExists(onCard / "._plain.txt"));
    makeOld(onCard);
    ASSERT_EQ(mac->moveBack(photos), "back");
    EXPECT_EQ(tagOf(photos / "plain.txt"), "red");
    EXPECT_EQ(tagOf(photos / "2025"), "green");
}

TEST_P(CompanionFiles, ThatBelongToNoItemAreItems) {
    ASSERT_EQ(mac->moveFolder(photos, mac->exFat), "moved");
    makeFile(onCard / "._lonely", "precious");
    makeOld(onCard);
    ASSERT_EQ(mac->moveBack(photos), "back");
    EXPECT_EQ(contentOf(photos / "._lonely"), "precious");
}

TEST_P(CompanionFiles, AreCountedInNoBackup) {
    const auto plan = BackupPlan::plan(mac->host, {photos}, mac->driveInfo(mac->exFat));
    const auto onExFat = BackupPlan::run(mac->host, plan, {});
    EXPECT_TRUE(Files::itemExists(onExFat.rootPath / "Photos/2025/._lake.raw"));
    EXPECT_EQ(onExFat.sourceFileCount, 2);
    EXPECT_EQ(onExFat.backupFileCount, 2);
}

TEST_P(CompanionFiles, AreNoObstacleToARemoval) {
    const fs::path folder = mac->exFat / "Old";
    makeFile(folder / "a", "1");
    makeFile(folder / "b", "2");
    tag(folder / "a", "red");
    tag(folder / "b", "blue");
    Files::removeItem(folder);
    EXPECT_FALSE(Files::itemExists(folder));
}

}  // namespace tarvik::test
