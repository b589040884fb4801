#include "Platform/Files/FileSystemStatus.h"
#include "Platform/Files/Files.h"
#include "Volume/VolumeTest.h"

#include <chrono>
#include <cstdlib>
#include <future>
#include <string>
#include <vector>

namespace tarvik::test {

namespace {

using namespace std::chrono_literals;
using PassThrough = VolumeTest;
using HangingVolume = VolumeTest;

}  // namespace

TEST_F(PassThrough, ShowsWhatTheFolderHolds) {
    const TemporaryFolder behind;
    makeFile(behind / "Music/song", "la");
    makeLink(behind / "Music/link", "song");
    fs::create_hard_link(behind / "Music/song", behind / "Music/same");
    const MacVolume other(behind.path(), at("Drive"));
    EXPECT_EQ(pictureOf(other / "Music"), pictureOf(behind / "Music"));
    EXPECT_EQ(Files::info(other / "Music/song")->inode, Files::info(other / "Music/same")->inode);
    EXPECT_NE(Files::info(other.path())->device, Files::info(folder.path())->device);
}

TEST_F(PassThrough, KeepsWhatIsMadeOnIt) {
    makeFile(at("Music/song"), "la");
    makeFileOfSize(at("Music/long"), 3'000'000);
    makeLink(at("Music/link"), "song");
    makePipe(at("Music/pipe"));
    fs::create_hard_link(at("Music/song"), at("Music/same"));
    const timespec times[] = {{.tv_sec = 5, .tv_nsec = 7}, {.tv_sec = 11, .tv_nsec = 13}};
    ASSERT_EQ(errorOf(::utimensat(AT_FDCWD, at("Music/song").c_str(), times, 0)), 0);
    ASSERT_EQ(setting(at("Music/song"), "user.color", "blue"), 0);
    const std::string picture = pictureOf(at("Music"));
    volume.reset();
    EXPECT_EQ(pictureOf(at("Music")), picture);
    EXPECT_EQ(statusOf(at("Music/song")).st_mtim.tv_nsec, 13);
    EXPECT_EQ(attributeOf(at("Music/song"), "user.color"), "blue");
}

TEST_F(PassThrough, RenamesAsTheFolderDoes) {
    makeFile(at("one"), "1");
    makeFile(at("two/inside"), "2");
    EXPECT_EQ(renaming(at("one"), at("two"), RENAME_NOREPLACE), EEXIST);
    EXPECT_EQ(renaming(at("one"), at("two"), RENAME_EXCHANGE), 0);
    EXPECT_EQ(contentOf(at("two")), "1");
    EXPECT_EQ(contentOf(at("one/inside")), "2");
    volume->set(MacVolume::Habit::exchangesNoNames, true);
    EXPECT_EQ(renaming(at("one"), at("two"), RENAME_EXCHANGE), EINVAL);
    EXPECT_EQ(renaming(at("one"), at("three"), RENAME_NOREPLACE), 0);
    EXPECT_EQ(Files::names(folder.path()), (std::vector<std::string>{"three", "two"}));
}

TEST_F(PassThrough, LetsOpenFilesOutliveTheirNames) {
    makeFile(at("file"), "content");
    const FileDescriptor file(::open(at("file").c_str(), O_RDWR | O_CLOEXEC));
    EXPECT_EQ(removal(at("file")), 0);
    EXPECT_TRUE(Files::names(folder.path()).empty());
    char text[8] = {};
    EXPECT_EQ(::pread(file.get(), text, 7, 0), 7);
    EXPECT_STREQ(text, "content");
    EXPECT_EQ(errorOf(::fsync(file.get())), 0);
}

TEST_F(PassThrough, RunsPrograms) {
    makeFile(at("program"), "#!/bin/sh\nexit 7\n");
    fs::permissions(at("program"), fs::perms::owner_all);
    EXPECT_EQ(WEXITSTATUS(std::system(at("program").c_str())), 7);
}

TEST_F(PassThrough, TellsTheRoomOfItsFolder) {
    const auto before = fileSystemStatus(folder.path());
    ASSERT_TRUE(before);
    EXPECT_GT(before->availableBytes, 0);
    volume->set(MacVolume::Habit::hasNoRoom, true);
    const auto after = fileSystemStatus(folder.path());
    EXPECT_EQ(after->availableBytes, 0);
    EXPECT_EQ(after->totalBytes, before->totalBytes);
}

TEST_F(HangingVolume, AnswersWhenItIsReleased) {
    volume->set(MacVolume::Habit::hangs, true);
    auto answer = std::async(std::launch::async, [&] { return fileSystemStatus(folder.path()).has_value(); });
    EXPECT_EQ(answer.wait_for(100ms), std::future_status::timeout);
    volume->set(MacVolume::Habit::hangs, false);
    EXPECT_EQ(answer.wait_for(10s), std::future_status::ready);
    EXPECT_TRUE(answer.get());
}

TEST_F(HangingVolume, GivesErrorsOnceItIsGone) {
    makeFile(at("file"));
    volume->set(MacVolume::Habit::hangs, true);
    auto answer = std::async(std::launch::async, [&] { return opening(at("file"), O_RDONLY); });
    EXPECT_EQ(answer.wait_for(100ms), std::future_status::timeout);
    volume.reset();
    EXPECT_EQ(answer.wait_for(10s), std::future_status::ready);
    EXPECT_NE(answer.get(), 0);
}

}  // namespace tarvik::test
