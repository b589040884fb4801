#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/FileError.h"
#include "Platform/Linux/TrashInfo.h"
#include "Platform/Machine/TrashCan.h"
#include "Platform/Machine/TrashCanContract.h"
#include "Support/EnvironmentVariable.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <linux/fs.h>
#include <regex>
#include <string>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarvik {
namespace {

using test::contentOf;
using test::EnvironmentVariable;
using test::makeFile;
using test::makeFolder;
using test::makeLink;
using test::pictureOf;
using test::RealVolume;
using test::TemporaryFolder;
using testing::HasSubstr;

INSTANTIATE_TEST_SUITE_P(System, TrashCanContract,
                         testing::Values(TrashCanKind{"Desktop", makeSystemTrashCan, ".local/share/Trash/files"}),
                         nameOfKind);

/// A user with a home, and the Trash of that user.
class SystemTrashCan : public testing::Test {
protected:
    SystemTrashCan() { makeFolder(m_home); }

    fs::path trashed(const fs::path& item) const { return makeSystemTrashCan(m_home)->moveToTrash(item); }
    int refusalOf(const fs::path& item) const {
        try {
            trashed(item);
            return 0;
        } catch (const FileError& error) {
            return error.code();
        }
    }

    const std::string m_user = std::to_string(::getuid());
    const TemporaryFolder m_world;
    const fs::path m_home = m_world / "home";
    const fs::path m_trash = m_home / ".local/share/Trash";
};

/// The record that a file manager reads beside a trashed item.
fs::path recordOf(const fs::path& trashedItem) {
    return trashedItem.parent_path().parent_path() / "info" / (trashedItem.filename().native() + ".trashinfo");
}

std::string pathLineOf(const fs::path& trashedItem) {
    const std::string record = contentOf(recordOf(trashedItem));
    std::smatch match;
    return std::regex_search(record, match, std::regex("\nPath=(.*)\n")) ? match[1].str() : "no path in " + record;
}

/// What a program prints, run by a shell.
std::string outputOf(const std::string& command) {
    FILE* pipe = ::popen(command.c_str(), "r");
    if (!pipe) return "cannot run";
    std::string output;
    for (int byte = std::fgetc(pipe); byte != EOF; byte = std::fgetc(pipe)) output += static_cast<char>(byte);
    ::pclose(pipe);
    return output;
}

std::string quoted(const fs::path& path) {
    return "'" + path.native() + "'";
}

TEST_F(SystemTrashCan, RecordsWhereAnItemStoodAndWhenItWent) {
    makeFile(m_home / "folder/my notes.txt");
    const fs::path there = trashed(m_home / "folder/my notes.txt");
    EXPECT_EQ(there, m_trash / "files/my notes.txt");
    EXPECT_THAT(contentOf(m_trash / "info/my notes.txt.trashinfo"),
                testing::MatchesRegex("\\[Trash Info\\]\nPath=" + m_home.native() +
                                      "/folder/my%20notes\\.txt\n"
                                      "DeletionDate=....-..-..T..:..:..\n"));
}

TEST(TrashInfo, WritesPathsAsPercentEncodedBytes) {
    EXPECT_THAT(TrashInfo::text("/a b/caf\xE9/100%/\xE2\x82\xAC\n-._~", 0),
                HasSubstr("\nPath=/a%20b/caf%E9/100%25/%E2%82%AC%0A-._~\n"));
}

TEST(TrashInfo, WritesTheDateInLocalTime) {
    const EnvironmentVariable zone("TZ", "XYZ-2");
    ::tzset();
    EXPECT_EQ(TrashInfo::text("item", 1700000000), "[Trash Info]\nPath=item\nDeletionDate=2023-11-15T00:13:20\n");
}

TEST_F(SystemTrashCan, NumbersItemAndRecordAlike) {
    for (const char* name : {"notes", "notes.2", "notes.3"}) {
        makeFile(m_home / "notes");
        const fs::path there = trashed(m_home / "notes");
        EXPECT_EQ(there, m_trash / "files" / name);
        EXPECT_EQ(pathLineOf(there), (m_home / "notes").native());
    }
}

TEST_F(SystemTrashCan, PassesOverANameWhoseItemOrRecordAloneIsTaken) {
    makeFile(m_trash / "files/notes", "without a record");
    makeFile(m_trash / "info/notes.2.trashinfo", "without an item");
    makeFile(m_home / "notes");
    EXPECT_EQ(trashed(m_home / "notes"), m_trash / "files/notes.3");
    EXPECT_EQ(contentOf(m_trash / "files/notes"), "without a record");
    EXPECT_EQ(contentOf(m_trash / "info/notes.2.trashinfo"), "without an item");
    EXPECT_FALSE(fs::exists(m_trash / "info/notes.trashinfo"));
}

TEST_F(SystemTrashCan, KeepsTheRecordOfWhatItStillHolds) {
    makeFile(m_home / "notes");
    const fs::path there = trashed(m_home / "notes");
    const auto trash = makeSystemTrashCan(m_home);
    trash->forget(there);
    EXPECT_TRUE(fs::exists(recordOf(there)));
    fs::rename(there, m_home / "notes");
    trash->forget(there);
    EXPECT_FALSE(fs::exists(recordOf(there)));
}

TEST_F(SystemTrashCan, TellsTheFoldersOfAnotherVolume) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const RealVolume volume = RealVolume::memory(m_world.path(), 1 << 20);
    makeFile(volume / "deep/file");
    const fs::path there = trashed(volume / "deep/file");
    fs::remove(volume / "deep");
    EXPECT_THAT(makeSystemTrashCan(m_home)->foldersFor(volume / "deep/file"), testing::Contains(there.parent_path()));
}

TEST_F(SystemTrashCan, StandsWhereTheEnvironmentPutsTheUsersData) {
    const EnvironmentVariable home("HOME", m_home.native());
    const EnvironmentVariable data("XDG_DATA_HOME", (m_world / "data").native());
    makeFile(m_home / "file");
    EXPECT_EQ(trashed(m_home / "file"), m_world / "data/Trash/files/file");
}

TEST_F(SystemTrashCan, TakesNoHintFromTheEnvironmentForAnotherHome) {
    const EnvironmentVariable data("XDG_DATA_HOME", (m_world / "data").native());
    makeFile(m_home / "file");
    EXPECT_EQ(trashed(m_home / "file"), m_trash / "files/file");
}

TEST_F(SystemTrashCan, LeavesTheItemAndNoRecordWhenTheRenameFails) {
    TARVIK_NEEDS_REAL_VOLUMES();
    const RealVolume volume = RealVolume::ext4(m_world.path(), 4 << 20);
    makeFile(volume.path() / "locked", "bytes");
    const FileDescriptor file(::open((volume.path() / "locked").c_str(), O_RDONLY | O_CLOEXEC));
    int flags = FS_IMMUTABLE_FL;
    ASSERT_EQ(::ioctl(file.get(), FS_IOC_SETFLAGS, &flags), 0);

    EXPECT_EQ(refusalOf(volume.path() / "locked"), EPERM);
    EXPECT_EQ(contentOf(volume.path() / "locked"), "bytes");
    EXPECT_TRUE(fs::is_empty(volume.path() / (".Trash-" + m_user) / "info"));
}

TEST_F(SystemTrashCan, KeepsAnItemOfAnotherVolumeOnThatVolume) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const RealVolume volume = RealVolume::memory(m_world.path(), 1 << 20);
    makeFile(volume.path() / "deep down/file");
    const fs::path there = trashed(volume.path() / "deep down/file");
    EXPECT_EQ(there, volume.path() / (".Trash-" + m_user) / "files/file");
    EXPECT_EQ(pathLineOf(there), "deep%20down/file");
    EXPECT_FALSE(fs::exists(m_trash));

    struct stat status {};
    ASSERT_EQ(::stat((volume.path() / (".Trash-" + m_user)).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0700U);
}

TEST_F(SystemTrashCan, UsesTheSharedTrashOfAVolumeThatHasOne) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const RealVolume volume = RealVolume::memory(m_world.path(), 1 << 20);
    makeFolder(volume.path() / ".Trash");
    fs::permissions(volume.path() / ".Trash", fs::perms::all | fs::perms::sticky_bit);
    makeFile(volume.path() / "file");
    const fs::path there = trashed(volume.path() / "file");
    EXPECT_EQ(there, volume.path() / ".Trash" / m_user / "files/file");
    EXPECT_EQ(pathLineOf(there), "file");
}

TEST_F(SystemTrashCan, DistrustsASharedTrashThatOthersCouldEmpty) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const RealVolume volume = RealVolume::memory(m_world.path(), 1 << 20);
    makeFolder(volume.path() / ".Trash");
    makeFile(volume.path() / "first");
    EXPECT_EQ(trashed(volume.path() / "first"), volume.path() / (".Trash-" + m_user) / "files/first");

    fs::remove(volume.path() / ".Trash");
    makeFolder(volume.path() / "real");
    fs::permissions(volume.path() / "real", fs::perms::all | fs::perms::sticky_bit);
    makeLink(volume.path() / ".Trash", volume.path() / "real");
    makeFile(volume.path() / "second");
    EXPECT_EQ(trashed(volume.path() / "second"), volume.path() / (".Trash-" + m_user) / "files/second");
    EXPECT_TRUE(fs::is_empty(volume.path() / "real"));
}

TEST_F(SystemTrashCan, FollowsNoLinkInPlaceOfAVolumesTrash) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const RealVolume volume = RealVolume::memory(m_world.path(), 1 << 20);
    makeFolder(volume.path() / "real");
    makeLink(volume.path() / (".Trash-" + m_user), volume.path() / "real");
    makeFile(volume.path() / "file");
    EXPECT_EQ(refusalOf(volume.path() / "file"), ENOTDIR);
    EXPECT_TRUE(fs::exists(volume.path() / "file"));
}

TEST_F(SystemTrashCan, RefusesTheTrashOfAVolume) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const RealVolume volume = RealVolume::memory(m_world.path(), 1 << 20);
    makeFile(volume.path() / "file");
    const fs::path there = trashed(volume.path() / "file");
    const std::string before = pictureOf(volume.path());
    EXPECT_EQ(refusalOf(there), EPERM);
    EXPECT_EQ(refusalOf(volume.path() / (".Trash-" + m_user)), EPERM);
    EXPECT_EQ(pictureOf(volume.path()), before);
}

TEST_F(SystemTrashCan, RefusesAnItemOfAReadOnlyVolume) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    RealVolume volume = RealVolume::memory(m_world.path(), 1 << 20);
    makeFile(volume.path() / "file");
    volume.remountReadOnly();
    EXPECT_EQ(refusalOf(volume.path() / "file"), EROFS);
    EXPECT_TRUE(fs::exists(volume.path() / "file"));
}

TEST_F(SystemTrashCan, CallsTheTopFolderOfAVolumeBusy) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const RealVolume volume = RealVolume::memory(m_world.path(), 1 << 20);
    EXPECT_EQ(refusalOf(volume.path()), EBUSY);
}

TEST_F(SystemTrashCan, RefusesTheRoot) {
    EXPECT_NE(refusalOf("/"), 0);
}

TEST_F(SystemTrashCan, TellsTwoMountsOfOneFileSystemApart) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const RealVolume volume = RealVolume::memory(m_world.path(), 1 << 20);
    makeFile(volume.path() / "inside/file");
    makeFolder(volume.path() / "bound");
    const fs::path home = volume.path() / "home";
    makeFolder(home);
    ASSERT_EQ(::mount((volume.path() / "inside").c_str(), (volume.path() / "bound").c_str(), nullptr, MS_BIND, nullptr),
              0);

    const fs::path there = makeSystemTrashCan(home)->moveToTrash(volume.path() / "bound/file");
    EXPECT_EQ(there, volume.path() / "bound" / (".Trash-" + m_user) / "files/file");
    ASSERT_EQ(::umount2((volume.path() / "bound").c_str(), MNT_DETACH), 0);
}

/// What file managers do with the Trash, done by an independent program.
class TrashReader : public SystemTrashCan {
protected:
    void SetUp() override {
        if (::access("/usr/bin/trash-list", X_OK) != 0 || ::access("/usr/bin/trash-restore", X_OK) != 0)
            TARVIK_SKIP_BECAUSE("There is no trash-list and trash-restore (package trash-cli).");
    }

    const EnvironmentVariable m_environmentHome{"HOME", m_home.native()};
    const EnvironmentVariable m_environmentData{"XDG_DATA_HOME", std::nullopt};
    const std::string m_name = "50% caf\xC3\xA9 = \"it's\" #1.txt";
};

TEST_F(TrashReader, PutsAnItemBackIntoTheHome) {
    makeFile(m_home / "work" / m_name, "bytes");
    trashed(m_home / "work" / m_name);
    EXPECT_THAT(outputOf("trash-list"), HasSubstr((m_home / "work" / m_name).native() + "\n"));
    outputOf("echo 0 | trash-restore " + quoted(m_home / "work"));
    EXPECT_EQ(contentOf(m_home / "work" / m_name), "bytes");
    EXPECT_TRUE(fs::is_empty(m_trash / "info"));
}

TEST_F(TrashReader, PutsAnItemBackOntoItsVolume) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const RealVolume volume = RealVolume::memory(m_world.path(), 1 << 20);
    makeFile(volume.path() / "work" / m_name, "bytes");
    trashed(volume.path() / "work" / m_name);
    outputOf("echo 0 | trash-restore " + quoted(volume.path() / "work"));
    EXPECT_EQ(contentOf(volume.path() / "work" / m_name), "bytes");
}

}  // namespace
}  // namespace tarvik
