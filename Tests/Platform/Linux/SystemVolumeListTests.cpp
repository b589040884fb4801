#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/PatientStatus.h"
#include "Platform/Machine/VolumeList.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <chrono>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace tarvik {
namespace {

using test::makeFile;
using test::makeFolder;
using test::RealVolume;
using test::TemporaryFolder;

std::optional<Volume> listedAt(const fs::path& mountPath, const fs::path& home) {
    for (const Volume& volume : makeSystemVolumeList(home)->mounted())
        if (volume.mountPath == mountPath) return volume;
    return std::nullopt;
}

/// A volume that never answers, as when its server has gone: nobody serves what the system asks of it.
class DeadVolume {
public:
    explicit DeadVolume(const fs::path& parent)
        : m_path(parent / "dead"), m_server(::open("/dev/fuse", O_RDWR | O_CLOEXEC)) {
        makeFolder(m_path);
        const std::string options =
            fmt::format("fd={},rootmode=40000,user_id={},group_id={}", m_server.get(), ::getuid(), ::getgid());
        m_isMounted =
            m_server && ::mount("dead", m_path.c_str(), "fuse.dead", MS_NOSUID | MS_NODEV, options.c_str()) == 0;
    }
    ~DeadVolume() {
        m_server.close();  // Whoever still waits gets an error now.
        if (m_isMounted) ::umount2(m_path.c_str(), MNT_DETACH);
    }
    bool isMounted() const { return m_isMounted; }
    const fs::path& path() const { return m_path; }

private:
    fs::path m_path;
    FileDescriptor m_server;
    bool m_isMounted = false;
};

TEST(SystemVolumeList, TellsAllOfADiskImage) {
    TARVIK_NEEDS_REAL_VOLUMES();
    const TemporaryFolder home;
    RealVolume volume = RealVolume::ext4(home.path(), 8 << 20, "My Drive");
    const auto listed = listedAt(volume.path(), home.path());
    ASSERT_TRUE(listed.has_value());
    EXPECT_EQ(listed->name, "My Drive");
    EXPECT_EQ(listed->isInternal, false);
    EXPECT_EQ(listed->isBrowsable, true);
    EXPECT_EQ(listed->isReadOnly, false);
    EXPECT_EQ(listed->formatDescription, "ext4");
    EXPECT_GT(listed->totalBytes.value_or(0), 4 << 20);
    EXPECT_LT(listed->totalBytes.value_or(0), 8 << 20);
    EXPECT_GT(listed->availableBytes.value_or(0), 0);
    EXPECT_LT(listed->availableBytes.value_or(0), listed->totalBytes.value_or(0));

    volume.remountReadOnly();
    EXPECT_EQ(listedAt(volume.path(), home.path())->isReadOnly, true);
    volume.detach();
    EXPECT_FALSE(listedAt(volume.path(), home.path()).has_value());
}

TEST(SystemVolumeList, GivesNoNameToADiskWithoutALabel) {
    TARVIK_NEEDS_REAL_VOLUMES();
    const TemporaryFolder home;
    const RealVolume volume = RealVolume::ext4(home.path(), 4 << 20);
    EXPECT_FALSE(listedAt(volume.path(), home.path())->name.has_value());
}

TEST(SystemVolumeList, ListsMemoryInTheHomeAndNowhereElseBelowTemporaryFolders) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder home;
    const RealVolume volume = RealVolume::memory(home.path(), 1 << 20);
    const auto listed = listedAt(volume.path(), home.path());
    ASSERT_TRUE(listed.has_value());
    EXPECT_EQ(listed->totalBytes, 1 << 20);
    EXPECT_EQ(listed->isInternal, false);
    EXPECT_EQ(listed->formatDescription, "Memory");
    EXPECT_FALSE(listedAt(volume.path(), "/home/nobody").has_value());
}

TEST(SystemVolumeList, ListsAVolumeThatIsBoundElsewhereOnce) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder home;
    const RealVolume volume = RealVolume::memory(home.path(), 1 << 20);
    makeFolder(volume.path() / "part");
    const fs::path bound = home / "a";  // A shorter path, but a part only.
    makeFolder(bound);
    ASSERT_EQ(::mount((volume.path() / "part").c_str(), bound.c_str(), nullptr, MS_BIND, nullptr), 0);
    EXPECT_TRUE(listedAt(volume.path(), home.path()).has_value());
    EXPECT_FALSE(listedAt(bound, home.path()).has_value());
    ASSERT_EQ(::umount2(bound.c_str(), MNT_DETACH), 0);
}

TEST(SystemVolumeList, LeavesOutAVolumeThatDoesNotAnswer) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder home;
    const DeadVolume dead(home.path());
    if (!dead.isMounted()) TARVIK_SKIP_BECAUSE("This system does not let the tests mount a volume that never answers.");
    const RealVolume alive = RealVolume::memory(home.path(), 1 << 20);
    EXPECT_FALSE(listedAt(dead.path(), home.path()).has_value());
    EXPECT_TRUE(listedAt(alive.path(), home.path()).has_value());
}

TEST(PatientStatus, WaitsForNoVolumeThatDoesNotAnswer) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder world;
    const DeadVolume dead(world.path());
    if (!dead.isMounted()) TARVIK_SKIP_BECAUSE("This system does not let the tests mount a volume that never answers.");
    const RealVolume alive = RealVolume::memory(world.path(), 1 << 20);
    const auto answers = PatientStatus::read({dead.path(), alive.path()}, std::chrono::seconds(2));
    ASSERT_EQ(answers.size(), 2U);
    EXPECT_FALSE(answers[0].has_value());
    ASSERT_TRUE(answers[1].has_value());
    EXPECT_EQ(answers[1]->totalBytes, 1 << 20);
    EXPECT_EQ(PatientStatus::silent({dead.path(), alive.path(), world / "gone"}, std::chrono::seconds(2)),
              std::vector<fs::path>{dead.path()});
}

TEST(PatientStatus, KeepsNothingOpenWhileItWaits) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    const TemporaryFolder world;
    const DeadVolume dead(world.path());
    if (!dead.isMounted()) TARVIK_SKIP_BECAUSE("This system does not let the tests mount a volume that never answers.");
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const FileDescriptor input(ends[0]);
    FileDescriptor output(ends[1]);
    std::thread asker([&] { PatientStatus::silent({dead.path()}, std::chrono::seconds(4)); });
    // By then the process that asks has been started, and would hold what was open.
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    output = FileDescriptor();
    pollfd end{.fd = input.get(), .events = POLLIN, .revents = 0};
    EXPECT_EQ(::poll(&end, 1, 3'000), 1) << "the other end is still open somewhere";
    asker.join();
}

TEST(PatientStatus, AnswersForFoldersOnly) {
    const TemporaryFolder world;
    makeFile(world / "file");
    const auto answers = PatientStatus::read({world.path(), world / "file", world / "gone"}, std::chrono::seconds(30));
    ASSERT_EQ(answers.size(), 3U);
    EXPECT_TRUE(answers[0].has_value());
    EXPECT_FALSE(answers[1].has_value());
    EXPECT_FALSE(answers[2].has_value());
}

}  // namespace
}  // namespace tarvik
