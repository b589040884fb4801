#include "Platform/Files/FileError.h"
#include "Platform/Machine/TrashCan.h"
#include "Platform/Machine/TrashCanContract.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <set>
#include <string>
#include <sys/stat.h>

namespace tarvik {

using test::contentOf;
using test::makeFile;
using test::makeFolder;
using test::makeLink;
using test::pictureOf;
using test::RealVolume;

TrashCanContract::TrashCanContract() {
    makeFolder(m_home);
    m_trash = GetParam().make(m_home);
}

int TrashCanContract::refusalOf(const fs::path& item) const {
    try {
        m_trash->moveToTrash(item);
        return 0;
    } catch (const FileError& error) {
        return error.code();
    }
}

INSTANTIATE_TEST_SUITE_P(Rooted, TrashCanContract, testing::Values(TrashCanKind{"Home", makeRootedTrashCan, ".Trash"}),
                         nameOfKind);

TEST_P(TrashCanContract, TakesAFileAndTellsWhereItIs) {
    makeFile(m_home / "notes.txt", "bytes");
    EXPECT_EQ(trashed(m_home / "notes.txt"), m_folder / "notes.txt");
    EXPECT_FALSE(fs::exists(m_home / "notes.txt"));
    EXPECT_EQ(contentOf(m_folder / "notes.txt"), "bytes");
}

TEST_P(TrashCanContract, TakesAFolderWithAllThatIsInIt) {
    makeFile(m_home / "App.app/Contents/Info.plist", "list");
    makeLink(m_home / "App.app/link", "nowhere");
    const std::string before = pictureOf(m_home / "App.app");
    EXPECT_EQ(pictureOf(trashed(m_home / "App.app")), before);
}

TEST_P(TrashCanContract, TakesALinkAndNotWhatItLeadsTo) {
    makeFile(m_home / "target/file");
    makeLink(m_home / "link", m_home / "target");
    const fs::path there = trashed(m_home / "link");
    EXPECT_EQ(fs::read_symlink(there), m_home / "target");
    EXPECT_TRUE(fs::exists(m_home / "target/file"));
    EXPECT_FALSE(fs::is_symlink(m_home / "link"));
}

TEST_P(TrashCanContract, TakesADanglingLink) {
    makeLink(m_home / "link", "nowhere");
    EXPECT_TRUE(fs::is_symlink(trashed(m_home / "link")));
}

TEST_P(TrashCanContract, TakesAnItemBelowALinkedFolder) {
    makeFile(m_home / "real/file", "bytes");
    makeLink(m_home / "linked", m_home / "real");
    EXPECT_EQ(contentOf(trashed(m_home / "linked/file")), "bytes");
    EXPECT_FALSE(fs::exists(m_home / "real/file"));
}

TEST_P(TrashCanContract, TakesAPathThatIsNotStandardized) {
    makeFile(m_home / "folder/file");
    EXPECT_EQ(trashed(m_home / "folder/../folder/"), m_folder / "folder");
}

TEST_P(TrashCanContract, KeepsNamesThatAreNoText) {
    TARVIK_NEEDS_NAMES_OF_ANY_BYTES();
    const std::string name = "caf\xE9 \n%41";
    makeFile(m_home / name, "bytes");
    EXPECT_EQ(trashed(m_home / name).filename().native(), name);
}

TEST_P(TrashCanContract, NeverReplacesWhatItHolds) {
    for (const char* content : {"first", "second", "third"}) {
        makeFile(m_home / "notes.txt", content);
        EXPECT_EQ(contentOf(trashed(m_home / "notes.txt")), content);
    }
    std::set<std::string> contents;
    for (const auto& entry : fs::directory_iterator(m_folder)) contents.insert(contentOf(entry.path()));
    EXPECT_EQ(contents, (std::set<std::string>{"first", "second", "third"}));
}

TEST_P(TrashCanContract, NeverPutsAnItemIntoAFolderOfItsName) {
    makeFolder(m_home / "Data");
    trashed(m_home / "Data");
    makeFolder(m_home / "Data");
    const fs::path second = trashed(m_home / "Data");
    EXPECT_EQ(second.parent_path(), m_folder);
    EXPECT_TRUE(fs::is_empty(m_folder / "Data"));
}

TEST_P(TrashCanContract, HoldsItemsWithTheLongestNameTwice) {
    std::string name;
    while (name.size() + 3 <= 255) name += "\xE2\x82\xAC";  // Three bytes a character.
    for (const char* content : {"first", "second"}) {
        makeFile(m_home / name, content);
        const fs::path there = trashed(m_home / name);
        EXPECT_EQ(contentOf(there), content);
        EXPECT_TRUE(there.filename().native().starts_with("\xE2\x82\xAC\xE2\x82\xAC"));
    }
}

TEST_P(TrashCanContract, IsForItsOwnerAlone) {
    makeFile(m_home / "file");
    trashed(m_home / "file");
    struct stat status {};
    ASSERT_EQ(::stat(m_folder.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0700U);
}

TEST_P(TrashCanContract, RefusesWhatIsNotThere) {
    EXPECT_EQ(refusalOf(m_home / "gone"), ENOENT);
    EXPECT_EQ(refusalOf(m_home / "gone/below"), ENOENT);
    EXPECT_TRUE(fs::is_empty(m_home));
}

TEST_P(TrashCanContract, RefusesWhatItHoldsAlready) {
    makeFile(m_home / "folder/file");
    const fs::path there = trashed(m_home / "folder");
    const std::string before = pictureOf(m_home);
    EXPECT_EQ(refusalOf(there), EPERM);
    EXPECT_EQ(refusalOf(there / "file"), EPERM);
    EXPECT_EQ(pictureOf(m_home), before);
}

TEST_P(TrashCanContract, RefusesWhatItHoldsByAnotherWayToo) {
    makeFile(m_home / "file");
    const fs::path there = trashed(m_home / "file");
    makeLink(m_world / "way", there.parent_path());
    EXPECT_EQ(refusalOf(m_world / "way/file"), EPERM);
    EXPECT_TRUE(fs::exists(there));
}

TEST_P(TrashCanContract, RefusesItselfAndTheFoldersAboveIt) {
    makeFile(m_home / "file");
    trashed(m_home / "file");
    const std::string before = pictureOf(m_home);
    for (fs::path folder = m_folder; folder != m_world.path(); folder = folder.parent_path())
        EXPECT_EQ(refusalOf(folder), EPERM) << folder;
    EXPECT_EQ(pictureOf(m_home), before);
}

TEST_P(TrashCanContract, RefusesTheTopFolderOfAVolume) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const RealVolume volume = RealVolume::memory(m_world.path(), 1 << 20);
    makeFile(volume.path() / "file");
    EXPECT_NE(refusalOf(volume.path()), 0);
    EXPECT_TRUE(fs::exists(volume.path() / "file"));
}

TEST_P(TrashCanContract, TellsTheFolderThatAnItemIsIn) {
    makeFile(m_home / "folder/notes.txt");
    const fs::path place = m_home / "folder/notes.txt";
    EXPECT_THAT(m_trash->foldersFor(place), testing::Contains(m_folder));
    const fs::path there = trashed(place);
    fs::remove(m_home / "folder");
    EXPECT_THAT(m_trash->foldersFor(place), testing::Contains(there.parent_path()));
}

TEST_P(TrashCanContract, ForgetsWhatWasTakenOut) {
    makeFile(m_home / "notes.txt", "first");
    const fs::path there = trashed(m_home / "notes.txt");
    fs::rename(there, m_home / "notes.txt");
    m_trash->forget(there);
    EXPECT_EQ(trashed(m_home / "notes.txt"), there);
    m_trash->forget(m_home / "gone");
}

TEST_P(TrashCanContract, SaysInOneSentenceWhatItRefused) {
    try {
        trashed(m_home / "gone");
        FAIL() << "took what is not there";
    } catch (const FileError& error) {
        EXPECT_EQ(error.description(),
                  "Could not move to the Trash " + (m_home / "gone").native() + ": No such file or directory");
    }
}

TEST(RootedTrashCan, NumbersNamesThatAreTaken) {
    const test::TemporaryFolder home;
    const auto trash = makeRootedTrashCan(home.path());
    const auto trashedNameOf = [&](const std::string& name) {
        makeFile(home / name);
        return trash->moveToTrash(home / name).filename().native();
    };
    EXPECT_EQ(trashedNameOf("Notes.app"), "Notes.app");
    EXPECT_EQ(trashedNameOf("Notes.app"), "Notes 2.app");
    EXPECT_EQ(trashedNameOf("Notes.app"), "Notes 3.app");
    EXPECT_EQ(trashedNameOf(".profile"), ".profile");
    EXPECT_EQ(trashedNameOf(".profile"), ".profile 2");
}

TEST(RootedTrashCan, RefusesAnItemOnAnotherVolume) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const test::TemporaryFolder home;
    const RealVolume volume = RealVolume::memory(home.path(), 1 << 20);
    makeFile(volume.path() / "file", "bytes");
    try {
        makeRootedTrashCan(home.path())->moveToTrash(volume.path() / "file");
        FAIL() << "took an item from another volume";
    } catch (const FileError& error) {
        EXPECT_EQ(error.code(), EXDEV);
    }
    EXPECT_EQ(contentOf(volume.path() / "file"), "bytes");
}

TEST(RootedTrashCan, RefusesATrashThatIsNoFolder) {
    const test::TemporaryFolder home;
    makeFolder(home / "elsewhere");
    makeLink(home / ".Trash", home / "elsewhere");
    makeFile(home / "file");
    EXPECT_THROW(makeRootedTrashCan(home.path())->moveToTrash(home / "file"), FileError);
    EXPECT_TRUE(fs::exists(home / "file"));
}

}  // namespace tarvik
