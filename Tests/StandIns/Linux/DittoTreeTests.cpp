#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/Files.h"
#include "StandIns/Linux/DittoRun.h"
#include "Support/DeepTree.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace tarvik::test {
namespace {

TEST(DittoTree, MakesTheFoldersAboveTheDestination) {
    const TemporaryFolder folder;
    makeFile(folder / "tree/file");
    ASSERT_EQ(ditto(folder / "tree", folder / "drive/Apps/New/tree").status, 0);
    EXPECT_EQ(pictureOf(folder / "drive/Apps/New/tree"), pictureOf(folder / "tree"));
}

TEST(DittoTree, CopiesTheSameWithoutOptionsAndWithThoseThatAreUsual) {
    const TemporaryFolder folder;
    makeFile(folder / "tree/file");
    ASSERT_EQ(runDitto({folder / "tree", folder / "copy"}).status, 0);
    ASSERT_EQ(runDitto({"--rsrc", "--extattr", "--qtn", "--acl", folder / "tree", folder / "other"}).status, 0);
    EXPECT_EQ(pictureOf(folder / "copy"), pictureOf(folder / "tree"));
    EXPECT_EQ(pictureOf(folder / "other"), pictureOf(folder / "tree"));
}

TEST(DittoTree, CopiesWhatIsInSeveralFoldersIntoOneAndFilesBesideIt) {
    const TemporaryFolder folder;
    makeFile(folder / "one/shared/first", "1");
    makeFile(folder / "two/shared/second", "2");
    makeFile(folder / "file", "3");
    ASSERT_EQ(runDitto({folder / "one", folder / "two", folder / "file", folder / "new/copy"}).status, 0);
    EXPECT_EQ(contentOf(folder / "new/copy/shared/first"), "1");
    EXPECT_EQ(contentOf(folder / "new/copy/shared/second"), "2");
    EXPECT_EQ(contentOf(folder / "new/copy/file"), "3");
}

TEST(DittoTree, PutsAFileIntoAFolder) {
    const TemporaryFolder folder;
    makeFile(folder / "file", "new");
    makeFile(folder / "copies/other", "stays");
    makeLink(folder / "link", "copies");
    ASSERT_EQ(ditto(folder / "file", folder / "copies").status, 0);
    EXPECT_EQ(contentOf(folder / "copies/file"), "new");
    fs::remove(folder / "copies/file");
    ASSERT_EQ(ditto(folder / "file", folder / "link").status, 0);
    EXPECT_EQ(contentOf(folder / "copies/file"), "new");
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    // Without a folder for it the destination becomes one.
    ASSERT_EQ(ditto(folder / "file", folder / "far/away").status, 0);
    EXPECT_EQ(contentOf(folder / "far/away/file"), "new");
}

TEST(DittoTree, CopiesAnEmptyFolder) {
    const TemporaryFolder folder;
    makeFolder(folder / "tree");
    ASSERT_EQ(ditto(folder / "tree", folder / "copy").status, 0);
    EXPECT_TRUE(fs::is_empty(folder / "copy"));
}

TEST(DittoTree, UnderstandsPathsWithSlashesAtTheEndAndWithoutAny) {
    const TemporaryFolder folder;
    makeFile(folder / "tree/file");
    ASSERT_EQ(runDitto({"--rsrc", (folder / "tree").native() + "//", (folder / "copy").native() + "/"}).status, 0);
    EXPECT_EQ(pictureOf(folder / "copy"), pictureOf(folder / "tree"));
    const auto inFolder = [&] { ::chdir(folder.path().c_str()); };
    ASSERT_EQ(runDitto({"tree", "near"}, inFolder).status, 0);
    EXPECT_EQ(pictureOf(folder / "near"), pictureOf(folder / "tree"));
}

TEST(DittoTree, CopiesLinksAsTheyAre) {
    const TemporaryFolder folder;
    makeFile(folder / "tree/file");
    makeLink(folder / "tree/relative", "file");
    makeLink(folder / "tree/dangling", "/nowhere/at all");
    makeLink(folder / "tree/loop", "loop");
    makeLink(folder / "tree/up", "..");
    makeLink(folder / "tree/long", std::string(4000, 'x'));
    ASSERT_EQ(ditto(folder / "tree", folder / "copy").status, 0);
    EXPECT_EQ(pictureOf(folder / "copy"), pictureOf(folder / "tree"));
}

TEST(DittoTree, FollowsLinksAmongThePathsThatItIsGiven) {
    const TemporaryFolder folder;
    makeFile(folder / "real/file", "content");
    makeLink(folder / "link", "real");
    makeLink(folder / "link to link", "link");
    makeLink(folder / "to be", "new");
    for (const char* source : {"link", "link/", "link to link"}) {
        const fs::path copy = folder / ("copy of " + std::to_string(std::string(source).size()));
        ASSERT_EQ(runDitto({"--rsrc", (folder / source).native(), copy}).status, 0) << source;
        EXPECT_EQ(pictureOf(copy), pictureOf(folder / "real")) << source;
    }
    ASSERT_EQ(ditto(folder / "real", folder / "to be").status, 0);
    EXPECT_EQ(pictureOf(folder / "new"), pictureOf(folder / "real"));
    EXPECT_EQ(fs::read_symlink(folder / "to be"), "new");
}

TEST(DittoTree, KeepsHardLinksWithinTheTree) {
    const TemporaryFolder folder;
    makeFileOfSize(folder / "tree/a/first", 5000);
    makeFolder(folder / "tree/b/c");
    fs::create_hard_link(folder / "tree/a/first", folder / "tree/b/c/second");
    fs::create_hard_link(folder / "tree/a/first", folder / "tree/third");
    fs::create_hard_link(folder / "tree/a/first", folder / "outside");
    makeLink(folder / "tree/link", "somewhere");
    ASSERT_EQ(::link((folder / "tree/link").c_str(), (folder / "tree/b/link").c_str()), 0);
    ASSERT_EQ(ditto(folder / "tree", folder / "copy").status, 0);
    EXPECT_EQ(pictureOf(folder / "copy"), pictureOf(folder / "tree"));
    EXPECT_EQ(statusOf(folder / "copy/third").st_nlink, 3U);
    EXPECT_EQ(statusOf(folder / "copy/third").st_ino, statusOf(folder / "copy/b/c/second").st_ino);
    EXPECT_EQ(statusOf(folder / "copy/third").st_ino, statusOf(folder / "copy/a/first").st_ino);
    EXPECT_NE(statusOf(folder / "copy/third").st_ino, statusOf(folder / "tree/third").st_ino);
    EXPECT_EQ(statusOf(folder / "copy/link").st_nlink, 2U);
}

TEST(DittoTree, KeepsHardLinksThatSeveralThreadsMeet) {
    const TemporaryFolder folder;
    for (int i = 0; i < 300; ++i) {
        const std::string name = std::to_string(i);
        makeFile(folder / "tree" / std::to_string(i % 7) / name, name);
        for (const char* other : {"x", "y"}) {
            makeFolder(folder / "tree" / other / name);
            fs::create_hard_link(folder / "tree" / std::to_string(i % 7) / name, folder / "tree" / other / name / "f");
        }
    }
    for (int round = 0; round < 2; ++round) {  // The second time the links are there already.
        ASSERT_EQ(ditto(folder / "tree", folder / "copy").status, 0);
        EXPECT_EQ(pictureOf(folder / "copy"), pictureOf(folder / "tree"));
        for (int i = 0; i < 300; ++i) EXPECT_EQ(statusOf(folder / "copy/y" / std::to_string(i) / "f").st_nlink, 3U);
    }
}

TEST(DittoTree, KeepsAnyName) {
    const TemporaryFolder folder;
    const std::string names[] = {"line\nbreak", "quo\"te's", "not\xFFutf8\x80", std::string(255, 'n'), " ", "-rf",
                                 "\\",          "*"};
    for (const std::string& name : names) {
        makeFile(folder / "tree" / name, name);
        makeFile(folder / "tree/folders" / name / name, name);
    }
    ASSERT_EQ(ditto(folder / "tree", folder / "copy").status, 0);
    EXPECT_EQ(pictureOf(folder / "copy"), pictureOf(folder / "tree"));
}

TEST(DittoTree, CopiesATreeDeeperThanAnyPathWithFewHandles) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder mounts;
    const RealVolume drive = RealVolume::memory(mounts.path(), 100'000'000);
    constexpr int levels = 3000;
    const DeepTree source(drive / "tree", levels);
    const DeepTree copy(drive / "copy", levels);
    source.make();
    const auto run = ditto(drive / "tree", drive / "copy", [] {
        const struct rlimit few { 256, 256 };
        ::setrlimit(RLIMIT_NOFILE, &few);
    });
    EXPECT_EQ(run.status, 0) << run.message;
    EXPECT_EQ(copy.intactLevels(), levels);
}

TEST(DittoTree, PassesOverPipesAndSocketsAndLeftoversOfFileServers) {
    const TemporaryFolder folder;
    for (const char* name : {"file", ".nfs0001", ".nfs folder/file", "deep/.afpDeleted7", ".nf", "x.nfs"})
        makeFile(folder / "tree" / name);
    makeSocket(folder / "tree/socket");
    makePipe(folder / "tree/deep/pipe");
    const auto run = ditto(folder / "tree", folder / "copy");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.message, "");
    EXPECT_EQ(Files::names(folder / "copy"), (std::vector<std::string>{".nf", "deep", "file", "x.nfs"}));
    EXPECT_TRUE(fs::is_empty(folder / "copy/deep"));
    for (const char* source : {"tree/socket", "tree/deep/pipe", "tree/.nfs0001"}) {
        EXPECT_EQ(ditto(folder / source, folder / "single").status, 0);
        EXPECT_FALSE(Files::itemExists(folder / "single"));
    }
}

TEST(DittoTree, MakesDevicesWhereAllowed) {
    const TemporaryFolder folder;
    makeFolder(folder / "tree");
    fs::permissions(folder.path(), fs::perms(0777));
    if (::mknod((folder / "tree/null").c_str(), S_IFCHR | 0600, makedev(1, 3)) != 0)
        TARVIK_SKIP_BECAUSE("needs the right to make devices");
    ASSERT_EQ(ditto(folder / "tree", folder / "copy").status, 0);
    EXPECT_EQ(statusOf(folder / "copy/null").st_rdev, makedev(1, 3));
    EXPECT_TRUE(S_ISCHR(statusOf(folder / "copy/null").st_mode));

    const auto run = ditto(folder / "tree", folder / "other", becomeNobody);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.message, "ditto: " + (folder / "other/null").native() + ": Operation not permitted\n");
}

TEST(DittoTree, MergesIntoWhatIsThere) {
    const TemporaryFolder folder;
    makeFile(folder / "tree/shared/file", "new");
    makeFile(folder / "copy/shared/file", "old and longer");
    makeFile(folder / "copy/shared/mine", "stays");
    makeFile(folder / "copy/other", "stays");
    ASSERT_EQ(ditto(folder / "tree", folder / "copy").status, 0);
    EXPECT_EQ(contentOf(folder / "copy/shared/file"), "new");
    EXPECT_EQ(contentOf(folder / "copy/shared/mine"), "stays");
    EXPECT_EQ(contentOf(folder / "copy/other"), "stays");
}

TEST(DittoTree, ReplacesWhatIsThereAndNeverWritesThroughIt) {
    const TemporaryFolder folder;
    makeFile(folder / "tree/first", "new");
    makeFile(folder / "tree/second", "new");
    makeLink(folder / "tree/third", "new target");
    makeFile(folder / "precious", "mine");
    makeLink(folder / "copy/first", folder / "precious");
    fs::create_hard_link(folder / "precious", folder / "copy/second");
    makeLink(folder / "copy/third", folder / "precious");
    ASSERT_EQ(ditto(folder / "tree", folder / "copy").status, 0);
    EXPECT_EQ(pictureOf(folder / "copy"), pictureOf(folder / "tree"));
    EXPECT_EQ(contentOf(folder / "precious"), "mine");
    EXPECT_EQ(statusOf(folder / "precious").st_nlink, 1U);
}

}  // namespace
}  // namespace tarvik::test
