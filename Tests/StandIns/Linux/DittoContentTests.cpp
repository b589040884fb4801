#include "StandIns/Linux/DittoRun.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <atomic>
#include <fcntl.h>
#include <fstream>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace tarvik::test {
namespace {

constexpr std::int64_t mebibyte = 1024 * 1024;

/// A file of zeros that take no room, with `text` at `offset`.
void makeSparseFile(const fs::path& path, std::int64_t size, std::int64_t offset, const std::string& text) {
    makeFile(path, "");
    fs::resize_file(path, static_cast<std::uintmax_t>(size));
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(offset);
    file << text;
}

bool isPrefix(const std::string& text, const std::string& of) {
    return of.compare(0, text.size(), text) == 0;
}

TEST(DittoContent, CopiesAFileToThePathOfTheDestination) {
    const TemporaryFolder folder;
    makeFileOfSize(folder / "file", 1000);
    EXPECT_EQ(ditto(folder / "file", folder / "copy").status, 0);
    EXPECT_EQ(contentOf(folder / "copy"), contentOf(folder / "file"));
}

TEST(DittoContent, CopiesFilesOfEverySizeBetweenFileSystems) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder folder;
    for (const std::size_t size : {0, 1, 4095, 4096, 262143, 262144, 262145, 700001})
        makeFileOfSize(folder / "tree" / std::to_string(size), size);
    const RealVolume drive = RealVolume::memory(folder.path(), 10 * mebibyte);
    ASSERT_EQ(ditto(folder / "tree", drive / "tree").status, 0);
    EXPECT_EQ(pictureOf(drive / "tree"), pictureOf(folder / "tree"));
    ASSERT_EQ(ditto(drive / "tree", folder / "back").status, 0);
    EXPECT_EQ(pictureOf(folder / "back"), pictureOf(folder / "tree"));
    ASSERT_EQ(ditto(folder / "tree", folder / "beside").status, 0);
    EXPECT_EQ(pictureOf(folder / "beside"), pictureOf(folder / "tree"));
}

TEST(DittoContent, KeepsHolesAsHoles) {
    const TemporaryFolder folder;
    makeSparseFile(folder / "tree/middle", mebibyte, mebibyte / 2, "island");
    makeSparseFile(folder / "tree/start", mebibyte, 0, "coast");
    makeSparseFile(folder / "tree/end", mebibyte, mebibyte - 5, "shore");
    makeSparseFile(folder / "tree/empty", mebibyte, 0, "");
    ASSERT_EQ(ditto(folder / "tree", folder / "copy").status, 0);
    EXPECT_EQ(pictureOf(folder / "copy"), pictureOf(folder / "tree"));
    for (const char* name : {"middle", "start", "end", "empty"})
        EXPECT_LT(statusOf(folder / "copy" / name).st_blocks * 512, mebibyte / 8) << name;
}

TEST(DittoContent, KeepsHolesOnAnotherFileSystem) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder folder;
    makeSparseFile(folder / "tree/middle", mebibyte, mebibyte / 2, "island");
    const RealVolume drive = RealVolume::memory(folder.path(), mebibyte / 4);
    ASSERT_EQ(ditto(folder / "tree", drive / "copy").status, 0);
    EXPECT_EQ(pictureOf(drive / "copy"), pictureOf(folder / "tree"));
}

TEST(DittoContent, ReadsFilesThatTheSystemMakesUp) {
    const TemporaryFolder folder;
    ASSERT_EQ(ditto("/proc/version", folder / "version").status, 0);
    EXPECT_EQ(contentOf(folder / "version"), contentOf("/proc/version"));
    EXPECT_FALSE(contentOf(folder / "version").empty());
}

TEST(DittoContent, CopiesWhatThereIsOfAFileThatGrows) {
    const TemporaryFolder folder;
    makeFileOfSize(folder / "tree/log", mebibyte);
    std::atomic<bool> isDone = false;
    std::thread writer([&] {
        std::ofstream log(folder / "tree/log", std::ios::binary | std::ios::app);
        for (int i = 0; i < 20000 && !isDone; ++i) log << "one more line\n" << std::flush;
    });
    const auto run = ditto(folder / "tree", folder / "copy");
    isDone = true;
    writer.join();
    EXPECT_EQ(run.status, 0) << run.message;
    const std::string copied = contentOf(folder / "copy/log");
    EXPECT_GE(copied.size(), static_cast<std::size_t>(mebibyte));
    EXPECT_TRUE(isPrefix(copied, contentOf(folder / "tree/log")));
}

TEST(DittoContent, CopiesWhatIsLeftOfAFileThatShrinks) {
    const TemporaryFolder folder;
    makeFileOfSize(folder / "tree/log", mebibyte);
    const std::string whole = contentOf(folder / "tree/log");
    std::atomic<bool> isDone = false;
    std::thread cutter([&] {
        for (std::int64_t size = mebibyte; size > 0 && !isDone; size -= 1024)
            ::truncate((folder / "tree/log").c_str(), size);
    });
    const auto run = ditto(folder / "tree", folder / "copy");
    isDone = true;
    cutter.join();
    EXPECT_EQ(run.status, 0) << run.message;
    // The system shows zeros where it cuts a file that is being read.
    const std::string copy = contentOf(folder / "copy/log");
    ASSERT_LE(copy.size(), whole.size());
    for (std::size_t i = 0; i < copy.size(); ++i) ASSERT_TRUE(copy[i] == whole[i] || copy[i] == '\0') << i;
}

TEST(DittoContent, TakesLittleMemoryForManyFiles) {
    const TemporaryFolder folder;
    for (int i = 0; i < 3000; ++i) makeFile(folder / "tree" / std::to_string(i), "x");
    std::ofstream large(folder / "tree/large", std::ios::binary);
    for (int i = 0; i < 32 * 1024; ++i) large << std::string(1024, 'x');
    large.close();
    // The figure of the system counts what the test took before the program started, so it is compared with an idle
    // run.
    const auto idle = runDitto({"--wrong"});
    const auto run = ditto(folder / "tree", folder / "copy");
    EXPECT_EQ(run.status, 0);
    EXPECT_LT(run.peakMemoryKilobytes, idle.peakMemoryKilobytes + 12 * 1024);
}

TEST(DittoContent, CopiesTwentyThousandFilesSideBySide) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder mounts;
    const RealVolume drive = RealVolume::memory(mounts.path(), 400 * mebibyte);
    for (unsigned i = 0; i < 20000; ++i)
        makeFile(drive / "tree" / std::to_string(i % 37) / std::to_string(i % 11) / std::to_string(i),
                 std::to_string(i));
    makeFolder(drive / "tree/empty");
    ASSERT_EQ(ditto(drive / "tree", drive / "copy").status, 0);
    EXPECT_EQ(pictureOf(drive / "copy"), pictureOf(drive / "tree"));
}

}  // namespace
}  // namespace tarvik::test
