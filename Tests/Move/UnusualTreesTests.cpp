// Trees of a shape or a kind that is rare, moved by the real copy tool to a real second volume and back.
#include "Move/MoverEngine.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/Files.h"
#include "Support/DeepTree.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace tarvik::test {

namespace {

class UnusualTrees : public testing::Test {
protected:
    void SetUp() override {
        TARVIK_NEEDS_MEMORY_VOLUMES();
        volume.emplace(RealVolume::memory(mounts.path(), 4 * megabyte));
        world.emplace(volume->path());
        world->withRealDitto();
        tree = world->home / "Tree";
        onDrive = world->foldersOnDrive() / "Tree";
    }

    void move(const fs::path& source) const {
        MoverEngine::moveAndLink(
            world->host, source, world->foldersOnDrive(), false, [](const JobStatus&) {},
            [](std::int64_t, std::int64_t) {});
    }

    void expectToGoAndComeBack() const {
        const std::string picture = pictureOf(tree);
        move(tree);
        EXPECT_EQ(Files::linkText(tree), onDrive);
        EXPECT_EQ(pictureOf(onDrive), picture);
        MoverEngine::restore(world->host, tree);
        EXPECT_EQ(pictureOf(tree), picture);
        EXPECT_FALSE(Files::itemExists(onDrive));
        EXPECT_EQ(world->namesAtHome(), std::vector<std::string>{"Tree"});
    }

    const TemporaryFolder mounts;
    std::optional<RealVolume> volume;
    std::optional<World> world;
    fs::path tree;
    fs::path onDrive;
};

/// Small files, the quick way: `count` of them, a thousand a folder.
void makeManyFiles(const fs::path& root, int count) {
    FileDescriptor folder;
    for (int number = 0; number < count; ++number) {
        if (number % 1000 == 0) {
            const fs::path path = root / std::to_string(number / 1000);
            makeFolder(path);
            folder = FileDescriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        }
        const std::string name = std::to_string(number);
        const FileDescriptor file(::openat(folder.get(), name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
        ASSERT_EQ(::write(file.get(), name.data(), name.size()), static_cast<ssize_t>(name.size()));
    }
}

}  // namespace

TEST_F(UnusualTrees, OfOneEmptyFolder) {
    makeFolder(tree);
    expectToGoAndComeBack();
}

TEST_F(UnusualTrees, OfLinksThatLeadInCircles) {
    makeLink(tree / "self", "self");
    makeLink(tree / "one", "other");
    makeLink(tree / "other", "one");
    makeLink(tree / "up/up", "..");
    makeLink(tree / "home", tree);
    expectToGoAndComeBack();
}

TEST_F(UnusualTrees, WithHolesThatAreFarLargerThanTheDrive) {
    makeFile(tree / "disk", "start");
    ASSERT_EQ(::truncate((tree / "disk").c_str(), 8 * megabyte), 0);
    expectToGoAndComeBack();
    EXPECT_LT(Files::info(tree / "disk")->allocatedSize, megabyte);
}

TEST_F(UnusualTrees, WithDevices) {
    makeFile(tree / "file");
    if (::mknod((tree / "null").c_str(), S_IFCHR | 0600, statusOf("/dev/null").st_rdev) != 0)
        TARVIK_SKIP_BECAUSE("needs the right to make devices");
    expectToGoAndComeBack();
    EXPECT_EQ(statusOf(tree / "null").st_rdev, statusOf("/dev/null").st_rdev);
}

TEST_F(UnusualTrees, DeeperThanAPathCanSay) {
    constexpr int levels = 60;
    const DeepTree source(tree, levels);
    const DeepTree copy(onDrive, levels);
    source.make();
    move(tree);
    EXPECT_EQ(Files::linkText(tree), onDrive);
    EXPECT_EQ(copy.intactLevels(), levels);
    MoverEngine::restore(world->host, tree);
    EXPECT_EQ(source.intactLevels(), levels);
    EXPECT_EQ(world->namesAtHome(), std::vector<std::string>{"Tree"});
}

TEST_F(UnusualTrees, OfAHundredThousandFiles) {
    constexpr int count = 100'000;
    const RealVolume source = RealVolume::memory(mounts.path(), 1000 * megabyte);
    const RealVolume drive = RealVolume::memory(mounts.path(), 1000 * megabyte);
    World large(drive.path());
    large.withRealDitto();
    makeManyFiles(source / "Tree", count);
    MoverEngine::moveAndLink(
        large.host, source / "Tree", large.foldersOnDrive(), false, [](const JobStatus&) {},
        [](std::int64_t, std::int64_t) {});
    EXPECT_EQ(Files::names(source.path()), std::vector<std::string>{"Tree"});
    EXPECT_EQ(Files::linkText(source / "Tree"), large.foldersOnDrive() / "Tree");
    int whole = 0;
    for (int number = 0; number < count; ++number) {
        const std::string name = std::to_string(number);
        whole += contentOf(source / "Tree" / std::to_string(number / 1000) / name) == name ? 1 : 0;
    }
    EXPECT_EQ(whole, count);
}

}  // namespace tarvik::test
