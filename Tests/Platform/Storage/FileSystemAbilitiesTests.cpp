#include "Platform/Storage/FileSystemAbilities.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Support/Tree.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace tarvik::test {

namespace {

const char* yesOrNo(bool answer) {
    return answer ? "yes" : "no";
}

/// The format's line in the table that users read.
std::string lineOf(const FileSystemAbilities& each) {
    return fmt::format("| {} | {} | {} | {} | {} |\n", each.format, yesOrNo(each.links), yesOrNo(each.permissions),
                       each.foldsCase ? "one name" : "two names",
                       each.largestFile ? SizeCalculator::format(*each.largestFile) : "any");
}

}  // namespace

TEST(FileSystemAbilities, AreThoseThatUsersAreTold) {
    const std::string readme = contentOf(fs::path(__FILE__).parent_path() / "../../../README.md");
    for (const char* format : {"APFS", "HFS+", "exFAT", "FAT32", "NTFS", "ext4"}) {
        const auto abilities = FileSystemAbilities::of(format);
        ASSERT_TRUE(abilities) << format;
        EXPECT_THAT(readme, testing::HasSubstr(lineOf(*abilities)));
    }
}

TEST(FileSystemAbilities, AreUnknownWhereAServerDecides) {
    for (const char* format : {"SMB", "NFS", "SSHFS", "", "apfs"})
        EXPECT_EQ(FileSystemAbilities::of(format), std::nullopt);
}

}  // namespace tarvik::test
