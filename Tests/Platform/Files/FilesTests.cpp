#include "Platform/Files/Files.h"
#include "Platform/Files/TreeObstacle.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <set>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace tarvik::test {

TEST(Files, StandardizesTheTextOfAPath) {
    EXPECT_EQ(Files::standardized("/a/./b/../c//d/"), "/a/c/d");
    EXPECT_EQ(Files::standardized("/"), "/");
    EXPECT_EQ(Files::standardized("/.."), "/");
    EXPECT_EQ(Files::standardized("name"), fs::current_path() / "name");
    EXPECT_EQ(Files::standardized("/a/b/."), "/a/b");
    for (const char* path : {"/a//b", "/a/./b", "/./a/b", "/c/../a/b", "/../a/b", "/a/b/", "/a/b/c/..", "//a/b"})
        EXPECT_EQ(Files::standardized(path).native(), "/a/b") << path;
    for (const char* path : {"/.a/..b/...", "/a./b..", "/a"}) EXPECT_EQ(Files::standardized(path).native(), path);
}

TEST(Files, KnowsWhatLiesBelowAFolder) {
    EXPECT_TRUE(Files::isAtOrBelow("/a/b", "/a/b"));
    EXPECT_TRUE(Files::isAtOrBelow("/a/b/c", "/a/b"));
    EXPECT_TRUE(Files::isAtOrBelow("/a", "/"));
    EXPECT_FALSE(Files::isAtOrBelow("/a/bc", "/a/b"));
    EXPECT_FALSE(Files::isAtOrBelow("/a", "/a/b"));
}

TEST(Files, KnowsWhatLiesBelowAFolderByAnotherPathToIt) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder folder;
    makeFile(folder / "a/b/file");
    const auto view = RealVolume::viewOf(folder / "a", folder.path());
    if (!view) TARVIK_SKIP_BECAUSE("This system shows no folder twice.");
    EXPECT_TRUE(Files::isItemAtOrBelow(*view / "b/file", folder / "a/b"));
    EXPECT_TRUE(Files::isItemAtOrBelow(*view / "b/not/there", folder / "a"));
    EXPECT_TRUE(Files::isItemAtOrBelow("/not/there", "/not"));
    EXPECT_FALSE(Files::isItemAtOrBelow(folder / "a", *view / "b"));
    EXPECT_FALSE(Files::isItemAtOrBelow(folder / "a/b", folder / "gone"));
}

TEST(Files, KeepsAFolderTogetherWithAllBelowItInTheOrderOfPaths) {
    std::set<fs::path> paths = {"/"};
    // All but the last one sort before a slash.
    for (const std::string mark : {"\x01", " ", "!", "#", "-", ".", "~"})
        for (const std::string path : {"/a", "/a/a", "/a/b", "/a/a/a", "/b"})
            for (const std::string end : {"", "/a", "/a/b"}) {
                paths.insert(path + end);
                paths.insert(path + mark + end);
                paths.insert(path + mark + "a" + end);
                paths.insert(path + "/" + mark + end);
            }
    for (const auto& folder : paths) {
        bool hasEnded = false;
        for (auto path = paths.lower_bound(folder); path != paths.end(); ++path) {
            const bool isInside = Files::isAtOrBelow(*path, folder);
            EXPECT_FALSE(isInside && hasEnded) << folder << " " << *path;
            hasEnded = hasEnded || !isInside;
        }
        for (auto path = paths.begin(); *path != folder; ++path) EXPECT_FALSE(Files::isAtOrBelow(*path, folder));
    }
}

TEST(Files, TellsAnItemFromWhatItLeadsTo) {
    const TemporaryFolder folder;
    makeLink(folder / "dangling", "nowhere");
    makeFolder(folder / "real");
    makeLink(folder / "link", "real");
    EXPECT_FALSE(Files::exists(folder / "dangling"));
    EXPECT_TRUE(Files::itemExists(folder / "dangling"));
    EXPECT_TRUE(Files::exists(folder / "link"));
    EXPECT_FALSE(Files::isFolder(folder / "link"));
    EXPECT_TRUE(Files::isSymbolicLink(folder / "link"));
    EXPECT_EQ(Files::linkText(folder / "link"), fs::path("real"));
    EXPECT_EQ(Files::linkText(folder / "real"), std::nullopt);
}

TEST(Files, ListsNamesInByteOrder) {
    const TemporaryFolder folder;
    for (const char* name : {"b", "B", ".hidden", "a\nb", "\xff\xfe", "é"}) makeFile(folder / name);
    EXPECT_EQ(Files::names(folder.path()), (std::vector<std::string>{".hidden", "B", "a\nb", "b", "é", "\xff\xfe"}));
    EXPECT_TRUE(Files::names(folder / "missing").empty());
}

TEST(Files, SaysInWordsWhatFailed) {
    const TemporaryFolder folder;
    makeFile(folder / "file");
    try {
        Files::createFolder(folder / "file/sub");
        FAIL() << "a file is no place for a folder";
    } catch (const FileError& error) {
        EXPECT_EQ(error.description(),
                  "Could not create the folder " + (folder / "file/sub").native() + ": Not a directory");
        EXPECT_EQ(error.domain(), "Files");
        EXPECT_EQ(error.code(), ENOTDIR);
    }
}

TEST(Files, RenameNeverReplaces) {
    const TemporaryFolder folder;
    makeFile(folder / "a", "A");
    makeFile(folder / "b", "B");
    try {
        Files::rename(folder / "a", folder / "b");
        FAIL() << "b is taken";
    } catch (const FileError& error) {
        EXPECT_EQ(error.code(), EEXIST);
    }
    EXPECT_EQ(contentOf(folder / "b"), "B");
    Files::rename(folder / "a", folder / "c");
    EXPECT_EQ(contentOf(folder / "c"), "A");
}

TEST(Files, MakesANewFolderOnlyOnce) {
    const TemporaryFolder folder;
    EXPECT_TRUE(Files::createNewFolder(folder / "new"));
    EXPECT_FALSE(Files::createNewFolder(folder / "new"));
    Files::createFolder(folder / "ordinary");
    EXPECT_EQ(test::statusOf(folder / "new").st_mode, test::statusOf(folder / "ordinary").st_mode);
    test::makeLink(folder / "dangling", "nowhere");
    EXPECT_FALSE(Files::createNewFolder(folder / "dangling"));
    EXPECT_THROW(Files::createNewFolder(folder / "missing/inside"), FileError);
    EXPECT_FALSE(Files::exists(folder / "missing"));
}

TEST(Files, ClaimsAPlaceOnce) {
    const TemporaryFolder folder;
    EXPECT_TRUE(Files::claim(folder / "a"));
    EXPECT_TRUE(Files::isFolder(folder / "a"));
    EXPECT_FALSE(Files::claim(folder / "a"));
    EXPECT_THROW(Files::claim(folder / "missing/c"), FileError);
}

TEST(Files, RefusesToGuessTheWorkingDirectory) {
    const fs::path before = fs::current_path();
    {
        const TemporaryFolder gone;
        fs::current_path(gone.path());
    }
    EXPECT_THROW(Files::standardized("../name"), FileError);
    fs::current_path(before);
}

TEST(Files, RemovesATreeButNothingThatItsLinksLeadTo) {
    const TemporaryFolder folder;
    makeFile(folder / "kept/file");
    makeFile(folder / "gone/deep/er/file");
    makeLink(folder / "gone/link", folder / "kept");
    makeFolder(folder / "gone/empty");
    Files::removeItem(folder / "gone");
    EXPECT_FALSE(Files::itemExists(folder / "gone"));
    EXPECT_TRUE(Files::exists(folder / "kept/file"));
}

TEST(Files, RemovesALinkAndNotItsTarget) {
    const TemporaryFolder folder;
    makeFile(folder / "kept/file");
    makeLink(folder / "link", folder / "kept");
    Files::removeLink(folder / "link");
    EXPECT_FALSE(Files::itemExists(folder / "link"));
    EXPECT_THROW(Files::removeLink(folder / "kept"), FileError);
    EXPECT_TRUE(Files::exists(folder / "kept/file"));
}

TEST(Files, RemovesALinkThatIsWrittenWithASlashAndNotItsTarget) {
    const TemporaryFolder folder;
    makeFile(folder / "kept/file");
    makeLink(folder / "link", folder / "kept");
    Files::removeItem((folder / "link").native() + "//");
    EXPECT_FALSE(Files::itemExists(folder / "link"));
    EXPECT_TRUE(Files::exists(folder / "kept/file"));
    Files::removeItem((folder / "kept").native() + "/");
    EXPECT_FALSE(Files::itemExists(folder / "kept"));
}

TEST(Files, RemovesNothingThatHasNoNameOfItsOwn) {
    const TemporaryFolder folder;
    makeFile(folder / "kept/file");
    makeLink(folder / "link", folder / "kept");
    for (const char* end : {"/.", "/./", "/..", "/../"})
        EXPECT_THROW(Files::removeItem((folder / "link").native() + end), FileError) << end;
    EXPECT_TRUE(Files::exists(folder / "kept/file"));
}

TEST(Files, RemovesATreeThatIsDeeperThanAPathCanSay) {
    const TemporaryFolder folder;
    ASSERT_EQ(::mkdir((folder / "deep").c_str(), 0755), 0);
    const fs::path before = fs::current_path();
    fs::current_path(folder / "deep");
    const std::string name(200, 'd');
    for (int level = 0; level < 300; ++level) {
        ASSERT_EQ(::mkdir(name.c_str(), 0755), 0);
        ASSERT_EQ(::chdir(name.c_str()), 0);
    }
    fs::current_path(before);
    Files::removeItem(folder / "deep");
    EXPECT_FALSE(Files::itemExists(folder / "deep"));
}

TEST(Files, RefusesToRemoveATreeWithAFolderThatMayNotBeEmptied) {
    if (::geteuid() == 0) {
        // Permissions do not bind the administrator: the question is asked as another user.
        const TemporaryFolder folder;
        fs::permissions(folder.path(), fs::perms::all);
        makeFile(folder / "tree/a");
        makeFile(folder / "tree/locked/b");
        makeFolder(folder / "tree/lockedButEmpty");
        fs::permissions(folder / "tree", fs::perms::all);
        fs::permissions(folder / "tree/lockedButEmpty", fs::perms::owner_read);
        ASSERT_EQ(::seteuid(65534), 0);
        const auto obstacle = TreeObstacle::toRemoval(folder / "tree");
        EXPECT_THROW(Files::removeItem(folder / "tree"), FileError);
        ASSERT_EQ(::seteuid(0), 0);
        ASSERT_TRUE(obstacle);
        EXPECT_EQ(obstacle->error().description(),
                  "Could not remove what is in " + (folder / "tree/locked").native() + ": Permission denied");
        EXPECT_TRUE(Files::exists(folder / "tree/a"));
    }
}

TEST(Files, RefusesToRemoveFromAFolderThatMayNotBeWrittenTo) {
    if (::geteuid() != 0) TARVIK_SKIP_BECAUSE("Only the administrator can become another user.");
    const TemporaryFolder folder;
    makeFile(folder / "opt/app/file");
    fs::permissions(folder.path(), fs::perms::all);
    fs::permissions(folder / "opt/app", fs::perms::all);
    ASSERT_EQ(::seteuid(65534), 0);
    const auto obstacle = TreeObstacle::toRemoval(folder / "opt/app");
    EXPECT_THROW(Files::removeItem(folder / "opt/app"), FileError);
    ASSERT_EQ(::seteuid(0), 0);
    ASSERT_TRUE(obstacle);
    EXPECT_TRUE(Files::exists(folder / "opt/app/file"));
}

TEST(Files, ReadsRegularFilesAloneAndNeverWaits) {
    const TemporaryFolder folder;
    makePipe(folder / "pipe");
    makeFolder(folder / "folder");
    makeLink(folder / "endless", "/dev/zero");
    for (const char* name : {"pipe", "folder", "endless"}) EXPECT_THROW(Files::read(folder / name), FileError) << name;
}

TEST(Files, ReadsNoMoreThanALimit) {
    const TemporaryFolder folder;
    makeFile(folder / "ten", "0123456789");
    EXPECT_EQ(Files::read(folder / "ten", 10), "0123456789");
    makeFile(folder / "sparse", "");
    fs::resize_file(folder / "sparse", std::uintmax_t{1} << 40);
    for (const char* name : {"ten", "sparse"}) {
        try {
            Files::read(folder / name, 9);
            ADD_FAILURE() << name;
        } catch (const FileError& error) {
            EXPECT_EQ(error.code(), EFBIG) << name;
        }
    }
}

TEST(Files, TellWhenAnItemWasModified) {
    const TemporaryFolder folder;
    makeFile(folder / "old");
    fs::last_write_time(folder / "old", fs::file_time_type::clock::now() - std::chrono::hours(50));
    makeLink(folder / "link", "old");
    const auto now = std::chrono::system_clock::now();
    const auto old = Files::modifiedAt(folder / "old");
    const auto link = Files::modifiedAt(folder / "link");
    ASSERT_TRUE(old && link);
    EXPECT_GE(now - *old, std::chrono::hours(49));
    EXPECT_LT(now - *old, std::chrono::hours(51));
    EXPECT_LT(now - *link, std::chrono::hours(1));
    EXPECT_FALSE(Files::modifiedAt(folder / "missing"));
}

TEST(Files, CreatesAFileAndReplacesNone) {
    const TemporaryFolder folder;
    const mode_t before = ::umask(0077);
    Files::createFile(folder / "plain", std::string("one\0two", 7));
    Files::createFile(folder / "program", "#!", 0755);
    ::umask(before);
    EXPECT_EQ(contentOf(folder / "plain"), std::string("one\0two", 7));
    EXPECT_EQ(statusOf(folder / "plain").st_mode & 07777U, 0644U);
    EXPECT_EQ(statusOf(folder / "program").st_mode & 07777U, 0755U);
    makeLink(folder / "link", folder / "nowhere");
    EXPECT_THROW(Files::createFile(folder / "plain", "x"), FileError);
    EXPECT_THROW(Files::createFile(folder / "link", "x"), FileError);
    EXPECT_FALSE(Files::exists(folder / "nowhere"));
    EXPECT_EQ(contentOf(folder / "plain").size(), 7U);
}

TEST(Files, LeavesNoPartOfAFileThatDoesNotFit) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder folder;
    const auto volume = RealVolume::memory(folder.path(), 64 * 1024);
    EXPECT_THROW(Files::createFile(volume / "large", std::string(200'000, 'x')), FileError);
    EXPECT_FALSE(Files::exists(volume / "large"));
}

TEST(Files, WritesWholeFilesAndReadsThemBack) {
    const TemporaryFolder folder;
    Files::writeDurably(folder / "record", "one");
    Files::writeDurably(folder / "record", std::string("two\0three", 9));
    EXPECT_EQ(Files::read(folder / "record"), std::string("two\0three", 9));
    EXPECT_EQ(Files::names(folder.path()).size(), 1U);
    EXPECT_THROW(Files::writeDurably(folder / "missing/record", "x"), FileError);
    EXPECT_THROW(Files::read(folder / "missing"), FileError);
}

TEST(Files, KeepsNamesThatAreNoText) {
    TARVIK_NEEDS_NAMES_OF_ANY_BYTES();
    const TemporaryFolder folder;
    const fs::path name = folder / fs::path("\xff\n'\" \xc3(");
    makeFile(name, "odd");
    Files::rename(name, folder / fs::path("\x80"));
    EXPECT_EQ(contentOf(folder / fs::path("\x80")), "odd");
}

}  // namespace tarvik::test
