// What an item itself bears, beside what is in it: the real copy tool gives it to a copy that it makes itself, and to
// no folder that stands there already.
#include "Move/MoverEngine.h"
#include "Platform/Files/Files.h"
#include "Support/Linux/PlainUser.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

#include <array>
#include <fcntl.h>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace tarvik::test {

namespace {

/// What a Mac gives to what was downloaded. Attributes of users bear a prefix here.
constexpr const char* quarantine = "user.com.apple.quarantine";
constexpr const char* accessList = "system.posix_acl_default";

std::string attributeOf(const fs::path& item, const char* name) {
    std::array<char, 256> value{};
    const ssize_t size = ::lgetxattr(item.c_str(), name, value.data(), value.size());
    return size < 0 ? "(none)" : std::string(value.data(), static_cast<std::size_t>(size));
}

bool setAttribute(const fs::path& item, const char* name, const std::string& value) {
    return ::lsetxattr(item.c_str(), name, value.data(), value.size(), 0) == 0;
}

/// An access list as the system stores it: the owner and the group may do all, others nothing.
const std::string list(
    "\x02\x00\x00\x00\x01\x00\x07\x00\xFF\xFF\xFF\xFF\x04\x00\x07\x00\xFF\xFF\xFF\xFF"
    "\x20\x00\x00\x00\xFF\xFF\xFF\xFF",
    28);

/// Two volumes that know the attributes of users.
class OwnAttributes : public testing::Test {
protected:
    void SetUp() override {
        TARVIK_NEEDS_MEMORY_VOLUMES();
        volume.emplace(RealVolume::memory(mounts.path(), 4 * megabyte));
        makeFile(*volume / "probe");
        if (!setAttribute(*volume / "probe", quarantine, "")) TARVIK_SKIP_BECAUSE("needs extended attributes");
        world.emplace(volume->path());
        world->withRealDitto();
    }

    void move(const fs::path& item) const {
        MoverEngine::moveAndLink(world->host, item, world->foldersOnDrive(), false, {}, {});
    }
    void moveBack(const fs::path& item) const { MoverEngine::restore(world->host, item); }

    const TemporaryFolder mounts;
    std::optional<RealVolume> volume;
    std::optional<World> world;
};

}  // namespace

TEST_F(OwnAttributes, OfAFolderGoThereAndComeBack) {
    const fs::path folder = world->home / "Music";
    makeFile(folder / "song");
    ASSERT_EQ(::chmod(folder.c_str(), 01751), 0);
    ASSERT_TRUE(setAttribute(folder, "user.tag", "blue"));
    ASSERT_TRUE(setAttribute(folder, accessList, list));
    const timespec times[] = {{1'000'000'000, 5}, {1'100'000'000, 7}};
    ASSERT_EQ(::utimensat(AT_FDCWD, folder.c_str(), times, 0), 0);
    const auto expectAllAt = [&](const fs::path& place) {
        EXPECT_EQ(statusOf(place).st_mode & 07777U, 01751U);
        EXPECT_EQ(attributeOf(place, "user.tag"), "blue");
        EXPECT_EQ(attributeOf(place, accessList), list);
        EXPECT_EQ(statusOf(place).st_mtim.tv_sec, 1'100'000'000);
        EXPECT_EQ(statusOf(place).st_mtim.tv_nsec, 7);
    };
    move(folder);
    expectAllAt(world->foldersOnDrive() / "Music");
    moveBack(folder);
    expectAllAt(folder);
}

TEST_F(OwnAttributes, OfADownloadedApplicationStay) {
    const fs::path app = world->home / "Editor.app";
    const std::string mark = "0083;5f6a1b2c;Safari;6A1B2C3D-0000-4000-8000-112233445566";
    makeFile(app / "Contents/MacOS/Editor");
    makeFile(app / "Contents/Info.plist");
    for (const fs::path& item : {app, app / "Contents/MacOS/Editor"}) ASSERT_TRUE(setAttribute(item, quarantine, mark));
    const auto expectTheSameAt = [&](const fs::path& place) {
        EXPECT_EQ(attributeOf(place, quarantine), mark);
        EXPECT_EQ(attributeOf(place / "Contents/MacOS/Editor", quarantine), mark);
        EXPECT_EQ(attributeOf(place / "Contents/Info.plist", quarantine), "(none)");
    };
    move(app);
    expectTheSameAt(world->foldersOnDrive() / "Editor.app");
    moveBack(app);
    expectTheSameAt(app);
}

TEST_F(OwnAttributes, OfAFolderThatNobodyMayWriteToStay) {
    const fs::path folder = world->home / "Empty";
    makeFolder(folder);
    fs::permissions(folder, fs::perms(0555));
    const PlainUser user;
    move(folder);
    EXPECT_EQ(statusOf(world->foldersOnDrive() / "Empty").st_mode & 07777U, 0555U);
    EXPECT_EQ(Files::names(world->foldersOnDrive()), std::vector<std::string>{"Empty"});
    moveBack(folder);
    EXPECT_EQ(statusOf(folder).st_mode & 07777U, 0555U);
    EXPECT_FALSE(Files::isSymbolicLink(folder));
}

}  // namespace tarvik::test
