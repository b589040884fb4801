#include "Installers/Tracking/Snapshotter.h"
#include "Platform/Text/Json.h"
#include "Support/FailureOf.h"
#include "Support/HostOf.h"
#include "Support/OrdinaryUser.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace tarvik {
namespace {

using test::makeFile;
using test::makeFolder;
using test::makeLink;
using testing::ElementsAre;
using testing::IsEmpty;

/// What a snapshot holds, sorted, without the folder that all is in.
std::vector<std::string> picture(const FileSnapshot& snapshot, const fs::path& folder) {
    std::vector<std::string> paths;
    for (const std::string_view path : snapshot.paths)
        paths.emplace_back(path.substr(path.size() < folder.native().size() ? 0 : folder.native().size()));
    std::sort(paths.begin(), paths.end());
    return paths;
}

class SnapshotterTest : public testing::Test {
protected:
    std::vector<std::string> captured(const std::vector<fs::path>& roots) const {
        return picture(Snapshotter::capture(roots), world.path());
    }

    const test::TemporaryFolder world;
};

TEST_F(SnapshotterTest, LooksWhereInstallersPutThings) {
    EXPECT_THAT(Snapshotter::defaultRoots(test::hostOf("/", "/Users/ada")),
                ElementsAre("/Applications", "/Users/ada/Applications", "/Library/Application Support",
                            "/Library/LaunchAgents", "/Library/LaunchDaemons", "/Library/PrivilegedHelperTools",
                            "/Users/ada/Library/Application Support", "/Users/ada/Library/LaunchAgents"));
    EXPECT_EQ(Snapshotter::defaultRoots(test::hostOf("/disk", "/disk/Users/ada"))[2],
              "/disk/Library/Application Support");
}

TEST_F(SnapshotterTest, ListsAllBelowARootWithTheContentsOfBundles) {
    makeFile(world / "root/Editor.app/Contents/Info.plist");
    makeFile(world / "root/file");
    makeFolder(world / "root/empty");
    EXPECT_THAT(captured({world / "root"}),
                ElementsAre("/root", "/root/Editor.app", "/root/Editor.app/Contents",
                            "/root/Editor.app/Contents/Info.plist", "/root/empty", "/root/file"));
}

TEST_F(SnapshotterTest, PassesOverHiddenItems) {
    makeFile(world / "root/.hidden/file");
    makeFile(world / "root/folder/.file");
    EXPECT_THAT(captured({world / "root"}), ElementsAre("/root", "/root/folder"));
    EXPECT_THAT(captured({world / "root/.hidden"}), ElementsAre("/root/.hidden", "/root/.hidden/file"))
        << "but not when it is a root";
}

TEST_F(SnapshotterTest, ListsLinksAndDoesNotFollowThem) {
    makeFile(world / "elsewhere/file");
    makeLink(world / "root/link", world / "elsewhere");
    makeLink(world / "root/dangling", "nowhere");
    EXPECT_THAT(captured({world / "root"}), ElementsAre("/root", "/root/dangling", "/root/link"));
}

TEST_F(SnapshotterTest, TakesWhatCannotBeListedByItself) {
    makeFile(world / "file");
    makeFile(world / "folder/inner");
    makeLink(world / "link", "folder");
    makeLink(world / "dangling", "nowhere");
    EXPECT_THAT(captured({world / "file", world / "link", world / "dangling", world / "nowhere", ""}),
                ElementsAre("/file", "/link"));
    fs::permissions(world / "folder", fs::perms::none);
    const test::OrdinaryUser user(world.path());
    EXPECT_THAT(captured({world / "folder"}), ElementsAre("/folder"));
}

TEST_F(SnapshotterTest, TakesRootsInAnyOrderAndInEachOther) {
    makeFile(world / "a/b/c");
    makeFile(world / "a/.hidden/file");
    makeFile(world / "a b/d");
    makeFile(world / "z");
    const std::vector<std::string> expected = {"/a",   "/a b",   "/a b/d", "/a/.hidden", "/a/.hidden/file",
                                               "/a/b", "/a/b/c", "/z"};
    EXPECT_EQ(captured({world / "z", world / "a b", world / "a/b", world / "a/.hidden", world / "a", world / "a"}),
              expected);
}

TEST_F(SnapshotterTest, KeepsStandardizedPaths) {
    makeFile(world / "root/file");
    EXPECT_THAT(captured({world / "root/./inner/..//"}), ElementsAre("/root", "/root/file"));
}

TEST_F(SnapshotterTest, TellsWhatWasAddedAndNothingElse) {
    makeFile(world / "root/kept");
    makeFile(world / "root/replaced");
    makeFile(world / "root/removed");
    const auto before = Snapshotter::capture({world / "root"});
    fs::remove(world / "root/removed");
    makeFile(world / "root/replaced", "anew");
    makeFile(world / "root/new/file");
    makeFile(world / "root/new-one");
    makeFile(world / "root/.hidden");
    const auto after = Snapshotter::capture({world / "root"});
    EXPECT_THAT(Snapshotter::added(before, after),
                ElementsAre(world / "root/new", world / "root/new-one", world / "root/new/file"))
        << "sorted as plain bytes";
    EXPECT_THAT(Snapshotter::added(after, before), ElementsAre(world / "root/removed"));
    EXPECT_THAT(Snapshotter::added(after, after), IsEmpty());
    EXPECT_EQ(Snapshotter::added({}, after).size(), after.paths.size());
    EXPECT_THAT(Snapshotter::added(after, {}), IsEmpty());
}

TEST_F(SnapshotterTest, SeesNothingInTheSameTreeTwice) {
    makeFile(world / "root/a/b");
    const auto before = Snapshotter::capture({world / "root"});
    EXPECT_EQ(Snapshotter::capture({world / "root"}), before);
    makeFile(world / "root/a/c");
    EXPECT_NE(Snapshotter::capture({world / "root"}), before);
}

TEST(FileSnapshot, IsAListOfPathsInJson) {
    const FileSnapshot snapshot{PathSet({"/b", "/a", "/a/\xff"})};
    const nlohmann::json json = snapshot;
    EXPECT_EQ(Json::compact(json), "{\"paths\":[\"/a\",\"/a/\\u0000ff\",\"/b\"]}");
    EXPECT_EQ(Json::parsedAs<FileSnapshot>(Json::compact(json)), snapshot);
    EXPECT_EQ(Json::compact(FileSnapshot()), "{\"paths\":[]}");
    EXPECT_EQ(Json::parsedAs<FileSnapshot>("{\"paths\":[]}"), FileSnapshot());
}

TEST(FileSnapshot, IsNotReadFromAnotherRecord) {
    for (const auto* text : {"{}", "[]", "{\"paths\":null}", "{\"paths\":\"/a\"}", "{\"paths\":[1]}",
                             "{\"paths\":{\"a\":\"/a\"}}", "{\"paths\":[\"/a\",null]}"})
        EXPECT_EQ(Json::parsedAs<FileSnapshot>(text), std::nullopt) << text;
}

}  // namespace
}  // namespace tarvik
