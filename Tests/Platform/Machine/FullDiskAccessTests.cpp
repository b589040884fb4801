#include "Platform/Machine/FullDiskAccess.h"
#include "Support/HostOf.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

namespace tarvik {
namespace {

using testing::Eq;
using testing::HasSubstr;
using testing::Optional;

TEST(FullDiskAccess, IsMissingWhereAFolderIsKeptThoughPermissionsAllow) {
    EXPECT_TRUE(FullDiskAccess::isMissingAfter({{"/Users/ada/Library/Mail", EPERM}}));
    EXPECT_TRUE(
        FullDiskAccess::isMissingAfter({{"/Users/ada/Library/Mail", ENOENT}, {"/Users/ada/Library/Safari", EPERM}}));
}

TEST(FullDiskAccess, IsNotJudgedByPermissionsNorByFoldersThatAreNotThere) {
    EXPECT_FALSE(FullDiskAccess::isMissingAfter({}));
    EXPECT_FALSE(FullDiskAccess::isMissingAfter({{"/Users/ada/Library/Mail", 0}}));
    EXPECT_FALSE(FullDiskAccess::isMissingAfter({{"/Users/ada/Library/Mail", EACCES}}));
    EXPECT_FALSE(
        FullDiskAccess::isMissingAfter({{"/Users/ada/Library/Mail", ENOENT}, {"/Users/ada/Library/Safari", ENOTDIR}}));
}

TEST(FullDiskAccess, IsNotMissingOnAMachineThatKeepsNothing) {
    const test::World world;
    EXPECT_FALSE(FullDiskAccess::isMissing(world.host)) << "none of the folders is there";
    for (const auto& kept : FullDiskAccess::keptFolders()) test::makeFolder(world.home / kept.path);
    EXPECT_FALSE(FullDiskAccess::isMissing(world.host));
}

TEST(FullDiskAccess, IsNamedWhereItKeepsAFolderFromMoving) {
    const Host host = test::hostOf("/", "/Users/ada");
    const fs::path folder = "/Users/ada/Documents/Letters";
    EXPECT_THAT(
        FullDiskAccess::refusalOf(host, folder, folder / "2024", EPERM),
        Optional(Eq("Letters can't be moved: macOS keeps /Users/ada/Documents/Letters/2024 from Tarvik until it is "
                    "allowed under System Settings > Privacy & Security > Full Disk Access.")));
    EXPECT_TRUE(FullDiskAccess::refusalOf(host, "/Volumes/Stick/Films", "/Volumes/Stick/Films", EPERM));
    EXPECT_FALSE(FullDiskAccess::refusalOf(host, folder, folder / "2024", EACCES)) << "permissions";
    EXPECT_FALSE(FullDiskAccess::refusalOf(host, "/Users/ada/Music", "/Users/ada/Music/Songs", EPERM)) << "not kept";
    EXPECT_FALSE(FullDiskAccess::refusalOf(host, "/Users/ada/Documents2", "/Users/ada/Documents2", EPERM))
        << "not kept";
}

TEST(FullDiskAccess, IsToldInOneLine) {
    const std::string line = FullDiskAccess::loss() + " " + FullDiskAccess::remedy();
    EXPECT_THAT(line, HasSubstr("System Settings > Privacy & Security > Full Disk Access"));
    EXPECT_EQ(line.find('\n'), std::string::npos);
}

}  // namespace
}  // namespace tarvik
