#include "StandIns/Linux/DittoRun.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace tarvik::test {
namespace {

unsigned permissionsOf(const fs::path& path) {
    return statusOf(path).st_mode & 07777U;
}

void setTimes(const fs::path& path, time_t seconds, long nanoseconds) {
    const std::array<struct timespec, 2> times{{{seconds, nanoseconds}, {seconds + 1, nanoseconds + 1}}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times.data(), AT_SYMLINK_NOFOLLOW), 0);
}

/// What `setTimes` has set.
void expectTimes(const fs::path& path, time_t seconds, long nanoseconds) {
    const auto status = statusOf(path);
    EXPECT_EQ(status.st_atim.tv_sec, seconds) << path;
    EXPECT_EQ(status.st_atim.tv_nsec, nanoseconds) << path;
    EXPECT_EQ(status.st_mtim.tv_sec, seconds + 1) << path;
    EXPECT_EQ(status.st_mtim.tv_nsec, nanoseconds + 1) << path;
}

std::string attributeOf(const fs::path& path, const char* name) {
    std::array<char, 65536> value{};
    const ssize_t size = ::lgetxattr(path.c_str(), name, value.data(), value.size());
    return size < 0 ? "(none)" : std::string(value.data(), static_cast<std::size_t>(size));
}

bool setAttribute(const fs::path& path, const char* name, const std::string& value) {
    return ::lsetxattr(path.c_str(), name, value.data(), value.size(), 0) == 0;
}

/// An access list as the system stores it: the owner, user 1234, the group, the mask and others may read and write.
std::string accessList() {
    const std::array<std::array<std::uint16_t, 4>, 5> entries{{{0x01, 6, 0xFFFF, 0xFFFF},
                                                               {0x02, 6, 1234, 0},
                                                               {0x04, 4, 0xFFFF, 0xFFFF},
                                                               {0x10, 6, 0xFFFF, 0xFFFF},
                                                               {0x20, 4, 0xFFFF, 0xFFFF}}};
    std::string bytes("\x02\x00\x00\x00", 4);
    bytes.append(reinterpret_cast<const char*>(entries.data()), sizeof(entries));
    return bytes;
}

TEST(DittoAttributes, KeepsPermissionsOfFilesAndFolders) {
    const TemporaryFolder folder;
    for (const unsigned mode : {0644U, 0755U, 0600U, 0777U, 0400U, 04755U, 02755U, 0000U}) {
        makeFile(folder / "tree" / std::to_string(mode));
        ASSERT_EQ(::chmod((folder / "tree" / std::to_string(mode)).c_str(), mode), 0);
    }
    makeFolder(folder / "tree/sticky");
    ASSERT_EQ(::chmod((folder / "tree/sticky").c_str(), 01777), 0);
    if (!isSuperuser()) fs::remove(folder / "tree/0");
    ASSERT_EQ(ditto(folder / "tree", folder / "copy").status, 0);
    EXPECT_EQ(pictureOf(folder / "copy"), pictureOf(folder / "tree"));
}

TEST(DittoAttributes, CopiesFoldersThatMayNotBeWritten) {
    const TemporaryFolder folder;
    makeFile(folder / "tree/locked/inner/file");
    for (const char* name : {"tree/locked/inner", "tree/locked", "tree"})
        fs::permissions(folder / name, fs::perms(0555));
    fs::permissions(folder.path(), fs::perms(0777));
    const auto run = ditto(folder / "tree", folder / "copy", [] {
        if (isSuperuser()) becomeNobody();
    });
    EXPECT_EQ(run.status, 0) << run.message;
    EXPECT_EQ(pictureOf(folder / "copy"), pictureOf(folder / "tree"));
    const auto again = ditto(folder / "tree", folder / "copy", [] {
        if (isSuperuser()) becomeNobody();
    });
    EXPECT_EQ(again.status, 1);
    EXPECT_EQ(again.message, "ditto: " + (folder / "copy/locked/inner/file").native() + ": Permission denied\n");
    for (const char* root : {"tree", "copy"})
        for (const char* name : {"", "locked", "locked/inner"}) fs::permissions(folder / root / name, fs::perms(0755));
}

TEST(DittoAttributes, LeavesFoldersThatAreThereAsTheyAre) {
    const TemporaryFolder folder;
    for (const char* name : {"tree/inner/file", "copy/inner/old"}) makeFile(folder / name);
    for (const char* name : {"tree", "tree/inner"}) {
        fs::permissions(folder / name, fs::perms(0755));
        if (!setAttribute(folder / name, "user.colour", "red")) TARVIK_SKIP_BECAUSE("needs extended attributes");
        setAttribute(folder / name, "system.posix_acl_default", accessList());
        setTimes(folder / name, 1000000001, 1);
    }
    for (const char* name : {"copy", "copy/inner"}) {
        fs::permissions(folder / name, fs::perms(0700));
        setAttribute(folder / name, "user.shape", "round");
    }
    if (isSuperuser()) {
        for (const char* name : {"tree", "tree/inner"}) ASSERT_EQ(::lchown((folder / name).c_str(), 1234, 4321), 0);
    }
    ASSERT_EQ(ditto(folder / "tree", folder / "copy").status, 0);
    EXPECT_TRUE(fs::exists(folder / "copy/inner/file"));
    for (const char* name : {"copy", "copy/inner"}) {
        EXPECT_EQ(permissionsOf(folder / name), 0700U) << name;
        EXPECT_EQ(attributeOf(folder / name, "user.colour"), "(none)") << name;
        EXPECT_EQ(attributeOf(folder / name, "user.shape"), "round") << name;
        EXPECT_EQ(attributeOf(folder / name, "system.posix_acl_default"), "(none)") << name;
        EXPECT_EQ(statusOf(folder / name).st_uid, ::geteuid()) << name;
        EXPECT_NE(statusOf(folder / name).st_mtim.tv_sec, 1000000002) << name;
    }
}

TEST(DittoAttributes, KeepsRightsToRunAsTheOwnerForTheSuperuserAlone) {
    const TemporaryFolder folder;
    fs::permissions(folder.path(), fs::perms(0777));
    makeFile(folder / "tree/program");
    if (isSuperuser()) {
        for (const char* name : {"tree", "tree/program"})
            ASSERT_EQ(::lchown((folder / name).c_str(), nobody, nobody), 0);
    }
    ASSERT_EQ(::chmod((folder / "tree/program").c_str(), 06755), 0);
    const auto run = ditto(folder / "tree", folder / "copy", [] {
        if (isSuperuser()) becomeNobody();
    });
    EXPECT_EQ(run.status, 0) << run.message;
    EXPECT_EQ(permissionsOf(folder / "copy/program"), 0755U);
}

TEST(DittoAttributes, KeepsTimesOfFilesFoldersAndLinks) {
    const TemporaryFolder folder;
    makeFile(folder / "tree/folder/file");
    makeLink(folder / "tree/folder/link", "file");
    setTimes(folder / "tree/folder/file", 1000000001, 123456789);
    setTimes(folder / "tree/folder/link", 1000000003, 987654321);
    setTimes(folder / "tree/folder", 1000000005, 111111111);
    setTimes(folder / "tree", 1000000007, 5);
    ASSERT_EQ(ditto(folder / "tree", folder / "copy").status, 0);
    expectTimes(folder / "copy/folder/file", 1000000001, 123456789);
    expectTimes(folder / "copy/folder/link", 1000000003, 987654321);
    expectTimes(folder / "copy/folder", 1000000005, 111111111);
    expectTimes(folder / "copy", 1000000007, 5);
}

TEST(DittoAttributes, KeepsTimesOfFoldersThatSeveralThreadsFill) {
    const TemporaryFolder folder;
    for (int i = 0; i < 400; ++i) makeFile(folder / "tree" / std::to_string(i % 20) / std::to_string(i));
    for (int i = 0; i < 20; ++i) setTimes(folder / "tree" / std::to_string(i), 1000000000 + i, i);
    ASSERT_EQ(ditto(folder / "tree", folder / "copy").status, 0);
    for (int i = 0; i < 20; ++i) expectTimes(folder / "copy" / std::to_string(i), 1000000000 + i, i);
}

TEST(DittoAttributes, LeavesNoTraceInTheSource) {
    const TemporaryFolder folder;
    makeFile(folder / "tree/file");
    setTimes(folder / "tree/file", 1000000001, 1);
    setTimes(folder / "tree", 1000000001, 1);
    ASSERT_EQ(ditto(folder / "tree", folder / "copy").status, 0);
    EXPECT_EQ(statusOf(folder / "tree/file").st_atim.tv_sec, 1000000001);
    EXPECT_EQ(statusOf(folder / "tree").st_atim.tv_sec, 1000000001);
}

TEST(DittoAttributes, KeepsOwnersWhereAllowed) {
    if (!isSuperuser()) TARVIK_SKIP_BECAUSE("needs the superuser");
    const TemporaryFolder folder;
    makeFile(folder / "tree/file");
    makeLink(folder / "tree/link", "nowhere");
    for (const char* name : {"tree", "tree/file", "tree/link"})
        ASSERT_EQ(::lchown((folder / name).c_str(), 1234, 4321), 0);
    ASSERT_EQ(::chmod((folder / "tree/file").c_str(), 06755), 0);
    ASSERT_EQ(ditto(folder / "tree", folder / "copy").status, 0);
    for (const char* name : {"copy", "copy/file", "copy/link"}) {
        EXPECT_EQ(statusOf(folder / name).st_uid, 1234U) << name;
        EXPECT_EQ(statusOf(folder / name).st_gid, 4321U) << name;
    }
    EXPECT_EQ(permissionsOf(folder / "copy/file"), 06755U);
}

TEST(DittoAttributes, PassesOverOwnersThatMayNotBeGiven) {
    if (!isSuperuser()) TARVIK_SKIP_BECAUSE("needs the superuser");
    const TemporaryFolder folder;
    fs::permissions(folder.path(), fs::perms(0777));
    makeFile(folder / "tree/program");
    ASSERT_EQ(::chmod((folder / "tree/program").c_str(), 06755), 0);
    const auto run = ditto(folder / "tree", folder / "copy", becomeNobody);
    EXPECT_EQ(run.status, 0) << run.message;
    EXPECT_EQ(statusOf(folder / "copy/program").st_uid, nobody);
    EXPECT_EQ(permissionsOf(folder / "copy/program"), 0755U) << "must not run as whoever copied it";
}

TEST(DittoAttributes, KeepsExtendedAttributes) {
    const TemporaryFolder folder;
    makeFile(folder / "tree/file");
    if (!setAttribute(folder / "tree/file", "user.colour", "red")) TARVIK_SKIP_BECAUSE("needs extended attributes");
    setAttribute(folder / "tree/file", "user.empty", "");
    setAttribute(folder / "tree", "user.bytes", std::string("\0\xFF\n", 3));
    ASSERT_EQ(::chmod((folder / "tree/file").c_str(), 0444), 0);
    ASSERT_EQ(ditto(folder / "tree", folder / "copy").status, 0);
    EXPECT_EQ(attributeOf(folder / "copy/file", "user.colour"), "red");
    EXPECT_EQ(attributeOf(folder / "copy/file", "user.empty"), "");
    EXPECT_EQ(attributeOf(folder / "copy", "user.bytes"), std::string("\0\xFF\n", 3));
    EXPECT_EQ(attributeOf(folder / "copy", "user.colour"), "(none)");
}

TEST(DittoAttributes, KeepsAttributesOfLinksAndRights) {
    const TemporaryFolder folder;
    makeLink(folder / "tree/link", "nowhere");
    makeFile(folder / "tree/program");
    // A capability: may bind small ports.
    const std::string capability("\x01\x00\x00\x02\x00\x04\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00",
                                 20);
    if (!setAttribute(folder / "tree/link", "trusted.mark", "kept") ||
        !setAttribute(folder / "tree/program", "security.capability", capability))
        TARVIK_SKIP_BECAUSE("needs the superuser");
    ASSERT_EQ(::lchown((folder / "tree/program").c_str(), 1234, 1234), 0);
    setAttribute(folder / "tree/program", "security.capability", capability);
    ASSERT_EQ(ditto(folder / "tree", folder / "copy").status, 0);
    EXPECT_EQ(attributeOf(folder / "copy/link", "trusted.mark"), "kept");
    EXPECT_EQ(attributeOf(folder / "copy/program", "security.capability"), capability);

    fs::permissions(folder.path(), fs::perms(0777));
    const auto run = ditto(folder / "tree", folder / "other", becomeNobody);
    EXPECT_EQ(run.status, 0) << run.message;
    EXPECT_EQ(attributeOf(folder / "other/program", "security.capability"), "(none)");
}

TEST(DittoAttributes, PassesOverAccessListsThatTheDestinationCannotHold) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder folder;
    makeFile(folder / "tree/file");
    setAttribute(folder / "tree/file", "system.posix_acl_access", accessList());
    const auto drive = RealVolume::ofKind(folder.path(), "ramfs");
    ASSERT_TRUE(drive);
    const auto run = ditto(folder / "tree", *drive / "copy");
    EXPECT_EQ(run.status, 0) << run.message;
    EXPECT_EQ(contentOf(*drive / "copy/file"), "content");
    EXPECT_EQ(permissionsOf(*drive / "copy/file"), permissionsOf(folder / "tree/file"));
}

TEST(DittoAttributes, SaysThatTheDestinationCannotHoldAnAttributeOfTheUser) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder folder;
    makeFile(folder / "tree/file");
    if (!setAttribute(folder / "tree/file", "user.colour", "red")) TARVIK_SKIP_BECAUSE("needs extended attributes");
    const auto drive = RealVolume::ofKind(folder.path(), "ramfs");
    ASSERT_TRUE(drive);
    const auto run = ditto(folder / "tree", *drive / "copy");
    EXPECT_NE(run.status, 0);
    EXPECT_EQ(run.message, "ditto: " + (*drive / "copy/file").native() + ": Operation not supported\n");
    EXPECT_EQ(contentOf(*drive / "copy/file"), "content");
}

TEST(DittoAttributes, KeepsAccessLists) {
    const TemporaryFolder folder;
    makeFile(folder / "tree/inner/file");
    if (!setAttribute(folder / "tree/inner/file", "system.posix_acl_access", accessList()))
        TARVIK_SKIP_BECAUSE("needs access lists");
    setAttribute(folder / "tree", "system.posix_acl_default", accessList());
    ASSERT_EQ(ditto(folder / "tree", folder / "copy").status, 0);
    EXPECT_EQ(attributeOf(folder / "copy/inner/file", "system.posix_acl_access"), accessList());
    EXPECT_EQ(attributeOf(folder / "copy", "system.posix_acl_default"), accessList());
    EXPECT_EQ(permissionsOf(folder / "copy/inner/file"), permissionsOf(folder / "tree/inner/file"));
    EXPECT_EQ(attributeOf(folder / "copy/inner", "system.posix_acl_default"), "(none)");
}

TEST(DittoAttributes, TakesNoAccessListFromTheFolderCopiedInto) {
    const TemporaryFolder folder;
    makeFile(folder / "tree/inner/file");
    makeFile(folder / "tree/file");
    makeFolder(folder / "drive/merged");
    for (const char* name : {"drive", "drive/merged"}) {
        if (!setAttribute(folder / name, "system.posix_acl_default", accessList()))
            TARVIK_SKIP_BECAUSE("needs access lists");
    }
    ASSERT_EQ(ditto(folder / "tree", folder / "drive/tree").status, 0);
    ASSERT_EQ(ditto(folder / "tree", folder / "drive/merged").status, 0);
    ASSERT_EQ(ditto(folder / "tree/file", folder / "drive/file").status, 0);
    for (const char* name : {"tree", "tree/file", "tree/inner", "tree/inner/file", "merged/inner", "merged/file",
                             "merged/inner/file", "file"}) {
        EXPECT_EQ(attributeOf(folder / "drive" / name, "system.posix_acl_access"), "(none)") << name;
        EXPECT_EQ(attributeOf(folder / "drive" / name, "system.posix_acl_default"), "(none)") << name;
    }
    EXPECT_EQ(pictureOf(folder / "drive/tree"), pictureOf(folder / "tree"));
}

}  // namespace
}  // namespace tarvik::test
