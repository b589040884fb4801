#include "MovePlan/ObstacleText.h"
#include "Platform/Files/FileFlags.h"
#include "Platform/Files/UnlockCommand.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <optional>
#include <string>

namespace tarvik {

namespace {

using Kind = TreeObstacle::Kind;

const fs::path editorBundle = "/Applications/Editor.app";

std::string sentenceFor(const TreeObstacle& obstacle) {
    return ObstacleText::of(editorBundle, obstacle);
}

}  // namespace

TEST(ObstacleText, TellsHowToUnlock) {
    const fs::path file = editorBundle / "Contents/notes";
    EXPECT_EQ(sentenceFor({Kind::lockedItem, file, EPERM, FileFlags::systemImmutable, 0}),
              "Editor.app can't be moved: /Applications/Editor.app/Contents/notes is locked (Operation not permitted). "
              "Unlock it with: " +
                  UnlockCommand::forThisSystem(FileFlags::systemImmutable, file));
    EXPECT_EQ(sentenceFor({Kind::sealedFolder, "/Applications", EPERM, FileFlags::systemAppend, 0}),
              "Editor.app can't be moved: nothing may be taken out of /Applications (Operation not permitted). "
              "Unlock it with: " +
                  UnlockCommand::forThisSystem(FileFlags::systemAppend, "/Applications"));
}

TEST(ObstacleText, TellsWhatTheSystemKeeps) {
    for (const auto flags :
         {FileFlags::restricted, FileFlags::noUnlink, FileFlags::restricted | FileFlags::userImmutable})
        EXPECT_EQ(sentenceFor({Kind::lockedItem, editorBundle, EPERM, flags, 0}),
                  "Editor.app can't be moved: the system itself protects /Applications/Editor.app.");
    EXPECT_EQ(sentenceFor({Kind::sealedFolder, "/System/Applications", EPERM, FileFlags::restricted, 0}),
              "Editor.app can't be moved: the system itself protects /System/Applications.");
    EXPECT_EQ(sentenceFor({Kind::deniedItem, editorBundle, EPERM}),
              "Editor.app can't be moved: the system itself protects /Applications/Editor.app.");
}

TEST(ObstacleText, NamesTheCommandThatLiftsADenial) {
    const fs::path movies = "/Users/robin/Movies";
    EXPECT_EQ(
        ObstacleText::of(movies,
                         {Kind::deniedItem, movies, EACCES, 0, std::nullopt, AccessList::Culprit{movies, "delete"}}),
        "Movies can't be moved: an access control list forbids to remove /Users/robin/Movies (Permission denied). "
        "Lift that with: chmod -a \"everyone deny delete\" /Users/robin/Movies");
    EXPECT_EQ(
        ObstacleText::of(movies, {Kind::deniedItem, movies / "a", EACCES, 0, std::nullopt,
                                  AccessList::Culprit{movies, "delete_child"}}),
        "Movies can't be moved: an access control list forbids to remove /Users/robin/Movies/a (Permission denied). "
        "Lift that with: chmod -a \"everyone deny delete_child\" /Users/robin/Movies");
}

TEST(ObstacleText, NamesNoCommandThatMightNotLiftADenial) {
    EXPECT_EQ(
        ObstacleText::of("/Users/robin/Movies", {Kind::deniedItem, "/Users/robin/Movies/a", EACCES}),
        "Movies can't be moved: an access control list forbids to remove /Users/robin/Movies/a (Permission denied). "
        "See which of its entries does with: ls -led /Users/robin/Movies/a /Users/robin/Movies");
}

TEST(ObstacleText, TellsHowToGoOnWithWhatAnInstallerHasPutThere) {
    EXPECT_EQ(sentenceFor({Kind::sealedFolder, editorBundle / "Contents", EACCES, 0, 0}),
              "Editor.app can't be moved: /Applications/Editor.app/Contents belongs to the administrator (Permission "
              "denied). Make it yours with: sudo chown -R \"$(id -un)\" /Applications/Editor.app");
    // Not the folder around it, not another user's, and not what is only closed.
    EXPECT_EQ(sentenceFor({Kind::sealedFolder, "/Applications", EACCES, 0, 0}),
              "Editor.app can't be moved: nothing may be taken out of /Applications (Permission denied).");
    EXPECT_EQ(sentenceFor({Kind::sealedFolder, editorBundle, EACCES, 0, 501}),
              "Editor.app can't be moved: nothing may be taken out of /Applications/Editor.app (Permission denied).");
    EXPECT_EQ(
        sentenceFor({Kind::sealedFolder, editorBundle, EROFS, 0, 0}),
        "Editor.app can't be moved: nothing may be taken out of /Applications/Editor.app (Read-only file system).");
}

TEST(ObstacleText, TellsWhatNoCopyWouldHold) {
    const fs::path item = editorBundle / "x";
    EXPECT_EQ(sentenceFor({Kind::pipe, item, ENOTSUP}),
              "Editor.app can't be moved: /Applications/Editor.app/x is a pipe, which no copy can hold.");
    EXPECT_EQ(sentenceFor({Kind::socket, item, ENOTSUP}),
              "Editor.app can't be moved: /Applications/Editor.app/x is a socket, which no copy can hold.");
    EXPECT_EQ(
        sentenceFor({Kind::device, item, ENOTSUP}),
        "Editor.app can't be moved: /Applications/Editor.app/x is a device file, which only the administrator can "
        "copy.");
    EXPECT_EQ(
        sentenceFor({Kind::serverFile, item, ENOTSUP}),
        "Editor.app can't be moved: /Applications/Editor.app/x is what a file server keeps of a removed file, and "
        "no copy would hold it. Quit the program that still uses it.");
    EXPECT_EQ(sentenceFor({Kind::cloudFile, item, ENOTSUP}),
              "Editor.app can't be moved: /Applications/Editor.app/x is only in the cloud. Download it first.");
}

}  // namespace tarvik
