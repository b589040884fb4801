// What programs write through memory mappings, without a system call that anyone could see.
#include "Move/MoverEngine.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/Files.h"
#include "Support/RealVolume.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fcntl.h>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <sys/mman.h>
#include <thread>

namespace tarvik::test {

namespace {

constexpr std::size_t pageSize = 4096;

/// The first page of a file, as a program holds it that writes to it again and again.
class Mapping {
public:
    explicit Mapping(const fs::path& path) {
        const FileDescriptor file(::open(path.c_str(), O_RDWR | O_CLOEXEC));
        void* page = ::mmap(nullptr, pageSize, PROT_READ | PROT_WRITE, MAP_SHARED, file.get(), 0);
        if (page == MAP_FAILED) throw std::runtime_error("cannot map " + path.native());
        m_page = static_cast<volatile char*>(page);
    }
    ~Mapping() { ::munmap(const_cast<char*>(m_page), pageSize); }
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;

    void write(char letter) { *m_page = letter; }

private:
    volatile char* m_page = nullptr;
};

class MappedWrites : public testing::Test {
protected:
    void SetUp() override {
        TARVIK_NEEDS_REAL_VOLUMES();
        volume.emplace(RealVolume::ext4(mounts.path(), 20'000'000));
        world.emplace(volume->path());
        world->withDitto("cp -aT \"$2\" \"$3\"\n: > '" + isCopied.native() + "'\n" + waitFor(isWritten));
    }

    /// Runs the act; a page of `file` that was written to before is written to again when the copy has been made.
    std::string failureOf(const std::function<void()>& act, const fs::path& file) const {
        Mapping mapping(file);
        mapping.write('a');
        std::thread program([&] {
            while (!Files::exists(isCopied)) std::this_thread::sleep_for(std::chrono::milliseconds(5));
            mapping.write('b');
            makeFile(isWritten);
        });
        std::string failure = "done";
        try {
            act();
        } catch (const Failure& error) {
            failure = error.description();
            makeFile(isCopied);
        }
        program.join();
        return failure;
    }

    const TemporaryFolder mounts;
    const TemporaryFolder signs;
    const fs::path isCopied = signs / "copied";
    const fs::path isWritten = signs / "written";
    std::optional<RealVolume> volume;
    std::optional<World> world;
};

}  // namespace

TEST_F(MappedWrites, CallAMoveOff) {
    const fs::path item = *volume / "Music";
    makeFileOfSize(item / "song", 100'000);
    const auto move = [&] {
        MoverEngine::moveAndLink(
            world->host, item, world->home / "elsewhere", false, [](const JobStatus&) {},
            [](std::int64_t, std::int64_t) {});
    };
    EXPECT_EQ(failureOf(move, item / "song"), "Verification failed: Music/song was changed while it was copied.");
    EXPECT_EQ(contentOf(item / "song").front(), 'b');
    EXPECT_EQ(contentOf(item / "song").size(), 100'000U);
    EXPECT_FALSE(Files::itemExists(world->home / "elsewhere/Music"));
}

TEST_F(MappedWrites, CallARestoreOff) {
    const fs::path onDrive = world->foldersOnDrive() / "Music";
    makeFileOfSize(onDrive / "song", 100'000);
    makeLink(world->home / "Music", onDrive);
    EXPECT_EQ(failureOf([&] { MoverEngine::restore(world->host, world->home / "Music"); }, onDrive / "song"),
              "Verification failed: Music/song was changed while it was copied.");
    EXPECT_EQ(Files::linkText(world->home / "Music"), onDrive);
    EXPECT_EQ(contentOf(onDrive / "song").front(), 'b');
}

}  // namespace tarvik::test
