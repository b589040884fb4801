#include "Platform/Files/Files.h"
#include "Volume/VolumeTest.h"

#include <string>
#include <vector>

namespace tarvik::test {

namespace {

using Names = std::vector<std::string>;

class ExFat : public VolumeTest {
protected:
    void SetUp() override {
        VolumeTest::SetUp();
        if (!volume) return;
        volume->set(MacVolume::Habit::isExFat, true);
        makeFile(at("file"), "content");
    }

    Names names() const { return Files::names(folder.path()); }
};

}  // namespace

TEST_F(ExFat, KnowsNothingButFilesAndFolders) {
    EXPECT_EQ(errorOf(::symlink("file", at("link").c_str())), ENOTSUP);
    EXPECT_EQ(errorOf(::link(at("file").c_str(), at("link").c_str())), ENOTSUP);
    EXPECT_EQ(errorOf(::mkfifo(at("pipe").c_str(), 0600)), ENOTSUP);
    EXPECT_EQ(names(), Names{"file"});
}

TEST_F(ExFat, KnowsNoFlagsOfARename) {
    makeFile(at("other"), "more");
    EXPECT_EQ(renaming(at("file"), at("other"), RENAME_EXCHANGE), EINVAL);
    EXPECT_EQ(renaming(at("file"), at("new"), RENAME_NOREPLACE), EINVAL);
    EXPECT_EQ(renaming(at("file"), at("new")), 0);
    EXPECT_EQ(contentOf(at("new")), "content");
}

TEST_F(ExFat, LetsAllDoEverything) {
    EXPECT_EQ(errorOf(::chmod(at("file").c_str(), 0400)), 0);
    EXPECT_EQ(errorOf(::chown(at("file").c_str(), 1234, 1234)), 0);
    EXPECT_EQ(statusOf(at("file")).st_mode & 07777, 0777U);
    EXPECT_EQ(statusOf(at("file")).st_uid, ::geteuid());
}

TEST_F(ExFat, CountsTimeInSteps) {
    const timespec times[] = {{.tv_sec = 1'000'001, .tv_nsec = 5}, {.tv_sec = 1'000'003, .tv_nsec = 999'999'999}};
    EXPECT_EQ(errorOf(::utimensat(AT_FDCWD, at("file").c_str(), times, 0)), 0);
    const auto status = statusOf(at("file"));
    EXPECT_EQ(status.st_mtim.tv_sec, 1'000'002);
    EXPECT_EQ(status.st_mtim.tv_nsec, 0);
    EXPECT_EQ(status.st_ctim.tv_sec, 1'000'002) << "there is no other time of a change";
}

TEST_F(ExFat, KeepsAttributesInFilesBesideTheirItem) {
    EXPECT_EQ(setting(at("file"), "user.color", "blue"), 0);
    EXPECT_EQ(names(), (Names{"._file", "file"}));
    EXPECT_EQ(contentOf(at("._file")).substr(0, 8), std::string("\0\5\x16\7\0\2\0\0", 8)) << "AppleDouble, version 2";
    EXPECT_EQ(attributeOf(at("file"), "user.color"), "blue");
    // Who copies the file alone has lost them.
    makeFile(at("copy"), contentOf(at("file")));
    EXPECT_EQ(attributeOf(at("copy"), "user.color"), std::nullopt);
    makeFile(at("._copy"), contentOf(at("._file")));
    EXPECT_EQ(attributeOf(at("copy"), "user.color"), "blue");
    EXPECT_EQ(errorOf(::removexattr(at("copy").c_str(), "user.color")), 0);
    EXPECT_EQ(names(), (Names{"._file", "copy", "file"}));
}

TEST_F(ExFat, LetsThemFollowTheirItem) {
    EXPECT_EQ(setting(at("file"), "user.color", "blue"), 0);
    EXPECT_EQ(renaming(at("file"), at("moved")), 0);
    EXPECT_EQ(names(), (Names{"._moved", "moved"}));
    EXPECT_EQ(attributeOf(at("moved"), "user.color"), "blue");
    EXPECT_EQ(removal(at("moved")), 0);
    EXPECT_EQ(names(), Names{}) << "a removal of all names in a list finds the second one gone";
}

TEST_F(ExFat, RemovesAFolderThatHoldsNothingElse) {
    makeFile(at("folder/._gone"));
    EXPECT_EQ(removal(at("folder")), 0);
    makeFile(at("folder/._gone"));
    makeFile(at("folder/there"));
    EXPECT_EQ(removal(at("folder")), ENOTEMPTY);
}

}  // namespace tarvik::test
