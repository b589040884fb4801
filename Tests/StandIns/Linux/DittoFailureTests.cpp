#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/Files.h"
#include "Platform/Text/Text.h"
#include "StandIns/Linux/DittoRun.h"
#include "Support/DeepTree.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace tarvik::test {
namespace {

/// The one thing that the tool says, in the form of the Mac's: its name, the path, and why.
void expectFailure(const DittoRun& run, const std::string& message) {
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.message, "ditto: " + message + "\n");
}

TEST(DittoFailure, SaysThatTheSourceIsMissing) {
    const TemporaryFolder folder;
    expectFailure(ditto(folder / "none", folder / "new/copy"),
                  "Cannot get the real path for source '" + (folder / "none").native() + "'");
    EXPECT_FALSE(Files::itemExists(folder / "new"));
}

TEST(DittoFailure, WantsPathsAndKnowsNoOptionForAnythingElse) {
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{},
                                                      {"--rsrc"},
                                                      {"a"},
                                                      {"--rsrc", "a"},
                                                      {"-x", "a", "b"},
                                                      {"--norsrc", "a", "b"},
                                                      {"a", "b", "--rsrc"},
                                                      {"a", ""}}) {
        const auto run = runDitto(arguments);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.message, "Usage: ditto [ <options> ] src [ ... src ] dst\n");
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
                  (folder / "tree/secret").native() + ": Permission denied");
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
                  (folder / "tree/locked").native() + ": Permission denied");
    fs::permissions(folder / "tree/locked", fs::perms(0755));
}

TEST(DittoFailure, GoesOnWithTheRestAndEndsWithAStatus) {
    const TemporaryFolder folder;
    for (const char* name : {"a secret", "b/secret", "c locked/file", "d/e/file", "f file"})
        makeFile(folder / "tree" / name);
    for (const char* name : {"a secret", "b/secret"}) fs::permissions(folder / "tree" / name, fs::perms::none);
    fs::permissions(folder / "tree/c locked", fs::perms::none);
    makeFile(folder / "other/file");
    fs::permissions(folder.path(), fs::perms(0777));
    const auto run = runDitto({folder / "none", folder / "tree", folder / "other", folder / "copy"}, [] {
        if (isSuperuser()) becomeNobody();
    });
    EXPECT_EQ(run.status, 1);
    auto lines = Text::lines(run.message);
    std::sort(lines.begin(), lines.end());
    const auto denied = [&](const char* name) {
        return "ditto: " + (folder / "tree" / name).native() + ": Permission denied";
    };
    EXPECT_THAT(
        lines, testing::ElementsAre(denied("a secret"), denied("b/secret"), denied("c locked"),
                                    "ditto: Cannot get the real path for source '" + (folder / "none").native() + "'"));
    for (const char* name : {"d/e/file", "f file", "file"}) EXPECT_TRUE(fs::exists(folder / "copy" / name)) << name;
    fs::permissions(folder / "tree/c locked", fs::perms(0755));
}

TEST(DittoFailure, SaysNothingOfWhatHasGoneMeanwhile) {
    const TemporaryFolder folder;
    std::atomic<bool> isDone = false;
    for (int i = 0; i < 2000; ++i) makeFile(folder / "tree" / std::to_string(i % 20) / std::to_string(i));
    std::thread remover([&] {
        for (int i = 1999; i >= 0 && !isDone; --i)
            fs::remove(folder / "tree" / std::to_string(i % 20) / std::to_string(i));
    });
    const auto run = ditto(folder / "tree", folder / "copy");
    isDone = true;
    remover.join();
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.message, "");
}

TEST(DittoFailure, SaysThatTheDriveIsFull) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder folder;
    makeFileOfSize(folder / "tree/large", 3000000);
    const RealVolume drive = RealVolume::memory(folder.path(), 1'000'000);
    expectFailure(ditto(folder / "tree", drive / "copy"),
                  (drive / "copy/large").native() + ": No space left on device");
}

TEST(DittoFailure, SaysOfEachItemThatTheDriveIsFull) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder folder;
    for (int i = 0; i < 600; ++i) makeFileOfSize(folder / "tree" / std::to_string(i % 9) / std::to_string(i), 9000);
    const RealVolume drive = RealVolume::memory(folder.path(), 2'000'000);
    const auto run = ditto(folder / "tree", drive / "copy");
    EXPECT_EQ(run.status, 1);
    EXPECT_GT(std::count(run.message.begin(), run.message.end(), '\n'), 100);
    for (const auto line : Text::lines(run.message)) {
        EXPECT_TRUE(line.starts_with("ditto: " + (drive / "copy").native())) << line;
        EXPECT_TRUE(line.ends_with(": No space left on device")) << line;
    }
}

TEST(DittoFailure, SaysThatTheDriveHasNoPlaceForMoreFiles) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder folder;
    for (int i = 0; i < 200; ++i) makeFolder(folder / "tree" / std::to_string(i));
    const auto drive = RealVolume::ofKind(folder.path(), "tmpfs", "nr_inodes=100");
    ASSERT_TRUE(drive);
    const auto run = ditto(folder / "tree", *drive / "copy");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.message.find("ditto: " + (*drive / "copy/").native()), 0U) << run.message;
}

TEST(DittoFailure, SaysThatTheDriveCannotBeWritten) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder folder;
    makeFile(folder / "tree/file");
    RealVolume drive = RealVolume::memory(folder.path(), 1'000'000);
    drive.remountReadOnly();
    expectFailure(ditto(folder / "tree", drive / "copy"), (drive / "copy").native() + ": Read-only file system");
    expectFailure(ditto(folder / "tree/file", drive / "copy"), (drive / "copy").native() + ": Read-only file system");
}

TEST(DittoFailure, NeverPutsAFileInTheWayOfAFolderOrTheReverse) {
    const TemporaryFolder folder;
    makeFile(folder / "file");
    makeFile(folder / "tree/inner/file");
    makeFile(folder / "has file/inner", "stays");
    makeFile(folder / "has folder/inner/file/stays");
    makeLink(folder / "has link/inner", folder / "elsewhere");
    makeFolder(folder / "elsewhere");
    makeFolder(folder / "has file as folder/file");
    expectFailure(ditto(folder / "tree", folder / "has file"), (folder / "has file/inner").native() + ": File exists");
    expectFailure(ditto(folder / "tree", folder / "has folder"),
                  (folder / "has folder/inner/file").native() + ": Is a directory");
    expectFailure(ditto(folder / "tree", folder / "has link"), (folder / "has link/inner").native() + ": File exists");
    expectFailure(ditto(folder / "file", folder / "has file as folder"),
                  (folder / "has file as folder/file").native() + ": Is a directory");
    expectFailure(ditto(folder / "tree", folder / "file"), (folder / "file").native() + ": File exists");
    EXPECT_EQ(contentOf(folder / "has file/inner"), "stays");
    EXPECT_TRUE(fs::is_empty(folder / "elsewhere"));
}

TEST(DittoFailure, RefusesToCopyAFolderIntoItself) {
    const TemporaryFolder folder;
    makeFile(folder / "tree/inner/file");
    makeLink(folder / "disguise", "tree/inner");
    const std::string before = pictureOf(folder / "tree");
    const std::string tree = (folder / "tree").native();
    for (const char* inside : {"tree/copy", "tree/inner", "tree/new/folders/copy", "disguise/copy", "disguise/../copy"})
        expectFailure(ditto(tree, folder / inside),
                      (folder / inside).native() + ": It would be copied into itself as " + tree);
    expectFailure(ditto(tree, tree), tree + ": It would be copied onto itself");
    expectFailure(ditto(folder / "tree/inner/file", folder / "disguise/file"),
                  (folder / "tree/inner/file").native() + ": It would be copied onto itself");
    EXPECT_EQ(pictureOf(folder / "tree"), before);
}

TEST(DittoFailure, RefusesToMergeIntoTheSourceFromAbove) {
    const TemporaryFolder folder;
    makeFile(folder / "a/a/file", "inner");
    makeFile(folder / "a/file", "outer");
    const auto run = ditto(folder / "a", folder.path());
    expectFailure(run, (folder / "a").native() + ": It would be copied into itself as " + (folder / "a").native());
    EXPECT_EQ(contentOf(folder / "a/file"), "outer");
}

TEST(DittoFailure, PrintsWhatEveryReaderUnderstands) {
    const TemporaryFolder folder;
    expectFailure(ditto(folder / "Gr\xC3\xBC\xC3\x9F"
                                 "e \xFF\xC3",
                        folder / "copy"),
                  "Cannot get the real path for source '" + (folder / "Grüße \\xFF\\xC3").native() + "'");
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
    EXPECT_EQ(run.message.find("ditto: " + (drive / "copy/ddd").native()), 0U);
    EXPECT_NE(run.message.find("/file: Is a directory\n"), std::string::npos);
}

}  // namespace
}  // namespace tarvik::test
