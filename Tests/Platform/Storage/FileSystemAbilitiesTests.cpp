#include "Platform/Storage/FileSystemAbilities.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Support/Tree.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace tarvik::test {

namespace {

using namespace std::chrono_literals;

const char* yesOrNo(bool answer) {
    return answer ? "yes" : "no";
}

std::string step(std::chrono::nanoseconds time) {
    if (time >= 1s) return fmt::format("{} s", time / 1s);
    if (time >= 1ms) return fmt::format("{} ms", time / 1ms);
    return fmt::format("{} ns", time / 1ns);
}

/// The format's line in the table that users read.
std::string lineOf(const FileSystemAbilities& each) {
    return fmt::format("| {} | {} | {} | {} | {} | {} | {} | {} |\n", each.format, yesOrNo(each.links),
                       yesOrNo(each.permissions), yesOrNo(each.exchange), each.foldsCase ? "one name" : "two names",
                       step(each.timeStep), each.largestFile ? SizeCalculator::format(*each.largestFile) : "any",
                       yesOrNo(each.isWritableOnMac));
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
