#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/Files.h"
#include "StandIns/Linux/DittoRun.h"
#include "Support/DeepTree.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarvik::test {
namespace {

void expectFailure(const DittoRun& run, const std::string& message) {
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.message, message + "\n");
}

TEST(DittoFailure, SaysThatTheSourceIsMissing) {
    const TemporaryFolder folder;
    expectFailure(ditto(folder / "none", folder / "new/copy"),
                  "Could not read " + (folder / "none").native() + ": No such file or directory");
    EXPECT_FALSE(Files::itemExists(folder / "new"));
}

TEST(DittoFailure, WantsTwoPathsAndKnowsNoOtherOption) {
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{},
                                                      {"--rsrc"},
                                                      {"a"},
                                                      {"--rsrc", "a"},
                                                      {"a", "b", "c"},
                                                      {"-x", "a", "b"},
                                                      {"a", ""}}) {
        const auto run = runDitto(arguments);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.message, "Usage: ditto [--rsrc] SOURCE DESTINATION\n");
    }
}

TEST(DittoFailure, SaysWhatItMayNotRead) {
    const TemporaryFolder folder;
    makeFile(folder / "tree/secret");
    fs::permissions(folder / "tree/secret", fs::perms::none);
    fs::permissions(folder.path(), fs::perms(0777));
    expectFailure(ditto(folder / "tree", folder / "copy",
                        [] {
                            if (isSuperuser()) becomeNobody();
                        }),
                  "Could not read " + (folder / "tree/secret").native() + ": Permission denied");
}

TEST(DittoFailure, SaysWhichFolderItMayNotRead) {
    const TemporaryFolder folder;
    makeFile(folder / "tree/locked/file");
    fs::permissions(folder / "tree/locked", fs::perms::none);
    fs::permissions(folder.path(), fs::perms(0777));
    expectFailure(ditto(folder / "tree", folder / "copy",
                        [] {
                            if (isSuperuser()) becomeNobody();
                        }),
                  "Could not read " + (folder / "tree/locked").native() + ": Permission denied");
    fs::permissions(folder / "tree/locked", fs::perms(0755));
}

TEST(DittoFailure, SaysThatTheDriveIsFull) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder folder;
    makeFileOfSize(folder / "tree/large", 3000000);
    const RealVolume drive = RealVolume::memory(folder.path(), 1'000'000);
    expectFailure(ditto(folder / "tree", drive / "copy"),
                  "Could not write " + (drive / "copy/large").native() + ": No space left on device");
}

TEST(DittoFailure, SaysOnceThatTheDriveIsFullWhenSeveralThreadsNotice) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder folder;
    for (int i = 0; i < 600; ++i) makeFileOfSize(folder / "tree" / std::to_string(i % 9) / std::to_string(i), 9000);
    const RealVolume drive = RealVolume::memory(folder.path(), 2'000'000);
    const auto run = ditto(folder / "tree", drive / "copy");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(std::count(run.message.begin(), run.message.end(), '\n'), 1);
    EXPECT_NE(run.message.find(": No space left on device\n"), std::string::npos) << run.message;
}

TEST(DittoFailure, SaysThatTheDriveHasNoPlaceForMoreFiles) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder folder;
    for (int i = 0; i < 200; ++i) makeFolder(folder / "tree" / std::to_string(i));
    const auto drive = RealVolume::ofKind(folder.path(), "tmpfs", "nr_inodes=100");
    ASSERT_TRUE(drive);
    const auto run = ditto(folder / "tree", *drive / "copy");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.message.find("Could not create the folder " + (*drive / "copy/").native()), 0U) << run.message;
}

TEST(DittoFailure, SaysThatTheDriveCannotBeWritten) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder folder;
    makeFile(folder / "tree/file");
    RealVolume drive = RealVolume::memory(folder.path(), 1'000'000);
    drive.remountReadOnly();
    expectFailure(ditto(folder / "tree", drive / "copy"),
                  "Could not create the folder " + (drive / "copy").native() + ": Read-only file system");
    expectFailure(ditto(folder / "tree/file", drive / "copy"),
                  "Could not write " + (drive / "copy").native() + ": Read-only file system");
}

TEST(DittoFailure, NeverPutsAFileInTheWayOfAFolderOrTheReverse) {
    const TemporaryFolder folder;
    makeFile(folder / "file");
    makeFile(folder / "tree/inner/file");
    makeFile(folder / "has file/inner", "stays");
    makeFile(folder / "has folder/inner/file/stays");
    makeLink(folder / "has link/inner", folder / "elsewhere");
    makeFolder(folder / "elsewhere");
    expectFailure(ditto(folder / "tree", folder / "has file"),
                  "Could not create the folder " + (folder / "has file/inner").native() + ": File exists");
    expectFailure(ditto(folder / "tree", folder / "has folder"),
                  "Could not write " + (folder / "has folder/inner/file").native() + ": Is a directory");
    expectFailure(ditto(folder / "tree", folder / "has link"),
                  "Could not create the folder " + (folder / "has link/inner").native() + ": File exists");
    expectFailure(ditto(folder / "file", folder / "elsewhere"),
                  "Could not write " + (folder / "elsewhere").native() + ": Is a directory");
    expectFailure(ditto(folder / "tree", folder / "file"),
                  "Could not create the folder " + (folder / "file").native() + ": File exists");
    EXPECT_EQ(contentOf(folder / "has file/inner"), "stays");
    EXPECT_TRUE(fs::is_empty(folder / "elsewhere"));
}

TEST(DittoFailure, RefusesToCopyAFolderIntoItself) {
    const TemporaryFolder folder;
    makeFile(folder / "tree/inner/file");
    makeLink(folder / "disguise", "tree/inner");
    const std::string before = pictureOf(folder / "tree");
    const std::string start = "Could not copy " + (folder / "tree").native();
    for (const char* inside : {"tree/copy", "tree/inner", "tree/new/folders/copy", "disguise/copy", "disguise/../copy"})
        expectFailure(ditto(folder / "tree", folder / inside), start + " into itself: " + (folder / inside).native());
    expectFailure(ditto(folder / "tree", folder / "tree"), start + " onto itself");
    expectFailure(ditto(folder / "tree/inner/file", folder / "disguise/file"),
                  "Could not copy " + (folder / "tree/inner/file").native() + " onto itself");
    EXPECT_EQ(pictureOf(folder / "tree"), before);
}

TEST(DittoFailure, RefusesToMergeIntoTheSourceFromAbove) {
    const TemporaryFolder folder;
    makeFile(folder / "a/a/file", "inner");
    makeFile(folder / "a/file", "outer");
    const auto run = ditto(folder / "a", folder.path());
    expectFailure(run, "Could not copy " + (folder / "a").native() + " into itself: " + (folder / "a").native());
    EXPECT_EQ(contentOf(folder / "a/file"), "outer");
}

TEST(DittoFailure, NeverTakesTwoNamesForOne) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder folder;
    const auto drive = RealVolume::ofKind(folder.path(), "tmpfs", "casefold");
    if (!drive) GTEST_SKIP() << "needs a file system that ignores case";
    makeFolder(*drive / "copy");
    const FileDescriptor copy(::open((*drive / "copy").c_str(), O_RDONLY | O_CLOEXEC));
    int flags = FS_CASEFOLD_FL;
    ASSERT_EQ(::ioctl(copy.get(), FS_IOC_SETFLAGS, &flags), 0);
    makeFile(folder / "tree/inner/name", "one");
    makeFile(folder / "tree/inner/NAME", "other");
    const auto run = ditto(folder / "tree", *drive / "copy");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.message.find(": File exists"), std::string::npos) << run.message;
}

TEST(DittoFailure, PrintsWhatEveryReaderUnderstands) {
    const TemporaryFolder folder;
    expectFailure(ditto(folder / "Gr\xC3\xBC\xC3\x9F"
                                 "e \xFF\xC3",
                        folder / "copy"),
                  "Could not read " + (folder / "Grüße \\xFF\\xC3").native() + ": No such file or directory");
}

TEST(DittoFailure, KeepsAMessageShorterThanAPipe) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder mounts;
    const RealVolume drive = RealVolume::memory(mounts.path(), 10'000'000);
    constexpr int levels = 400;
    const DeepTree source(drive / "tree", levels);
    const DeepTree copy(drive / "copy", levels);
    source.make();
    copy.make();
    // The bottom of the source takes a file where the copy has a folder.
    const auto swap = [&](const char* root, bool isFile) {
        FileDescriptor level(::open((drive / root).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        for (int i = 0; i < levels; ++i)
            level = FileDescriptor(
                ::openat(level.get(), std::string(255, 'd').c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (isFile) FileDescriptor(::openat(level.get(), "file", O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
        if (!isFile) ::mkdirat(level.get(), "file", 0755);
    };
    swap("tree", true);
    swap("copy", false);
    const auto run = ditto(drive / "tree", drive / "copy");
    EXPECT_EQ(run.status, 1);
    EXPECT_LT(run.message.size(), 10000U);
    EXPECT_EQ(run.message.find("Could not write " + (drive / "copy/ddd").native()), 0U);
    EXPECT_NE(run.message.find("/file: Is a directory\n"), std::string::npos);
}

}  // namespace
}  // namespace tarvik::test
