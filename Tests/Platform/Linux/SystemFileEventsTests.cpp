#include "Platform/Files/Files.h"
#include "Platform/Machine/FileEvents.h"
#include "Support/EventLog.h"
#include "Support/Gate.h"
#include "Support/OrdinaryUser.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <fstream>
#include <functional>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarvik {
namespace {

using test::makeFile;
using test::makeFolder;
using test::makeLink;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class SystemFileEventsTest : public testing::Test {
protected:
    SystemFileEventsTest() { makeFolder(root); }

    std::unique_ptr<FileEvents::Stream> watch() const { return events->begin({root}, log.listener()); }

    const std::shared_ptr<const FileEvents> events = makeSystemFileEvents();
    const test::TemporaryFolder world;
    const fs::path root = world / "root";
    const test::EventLog log;
};

constexpr int noNamespace = 77;
constexpr int tooManyThreads = 78;

/// Runs a function in a process of its own, for which a limit of the system is lower: a user namespace has limits of
/// its own, see namespaces(7). @returns its status.
int statusUnderLimit(const std::string& limit, int value, const std::function<bool()>& function) {
    const pid_t child = ::fork();
    if (child == 0) {
        if (::unshare(CLONE_NEWUSER) != 0) ::_exit(errno == EINVAL ? tooManyThreads : noNamespace);
        std::ofstream file("/proc/sys/user/" + limit);
        if (!(file << value << std::flush)) ::_exit(noNamespace);
        ::_exit(function() ? 0 : 1);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

#define TARVIK_EXPECT_UNDER_LIMIT(limit, value, function)                                       \
    do {                                                                                        \
        const int status = statusUnderLimit(limit, value, function);                            \
        if (status == tooManyThreads) GTEST_SKIP() << "The sanitizer has a thread of its own."; \
        if (status == noNamespace) TARVIK_SKIP_BECAUSE("The system gives no user namespaces."); \
        EXPECT_EQ(status, 0);                                                                   \
    } while (false)

TEST_F(SystemFileEventsTest, SayWhenTheSystemLetsNoMoreFoldersBeWatched) {
    for (int count = 0; count < 50; ++count) makeFolder(root / fmt::format("folder{}", count));
    TARVIK_EXPECT_UNDER_LIMIT("max_inotify_watches", 20, [&] {
        const auto stream = watch();
        if (!stream || log.sentences().size() != 1) return false;
        makeFile(root / "file");
        return log.tells(root / "file") && log.sentences().front().find("max_user_watches") != std::string::npos;
    });
    TARVIK_EXPECT_UNDER_LIMIT("max_inotify_watches", 1000, [&] { return watch() && log.sentences().empty(); });
}

TEST_F(SystemFileEventsTest, TellOfFilesInNewFoldersThatMayNotBeWatched) {
    TARVIK_EXPECT_UNDER_LIMIT("max_inotify_watches", 10, [&] {
        const auto stream = watch();
        if (!stream || !log.sentences().empty()) return false;
        std::vector<std::string> expected;
        for (int count = 0; count < 30; ++count) {
            const fs::path folder = world / fmt::format("ready{}", count);
            makeFile(folder / "deep/file");
            fs::rename(folder, root / folder.filename());
            expected.push_back(root / folder.filename() / "deep/file");
        }
        return log.missingOf(expected).empty() && log.sentences().size() == 1;
    });
}

TEST_F(SystemFileEventsTest, SayWhenNothingCanBeWatched) {
    TARVIK_EXPECT_UNDER_LIMIT("max_inotify_instances", 0, [&] {
        return !watch() && log.sentences().size() == 1 &&
               log.sentences().front().find("Too many open files") != std::string::npos;
    });
}

TEST_F(SystemFileEventsTest, SayWhenAFolderMayNotBeRead) {
    makeFolder(root / "closed");
    fs::permissions(root / "closed", fs::perms::none);
    const test::OrdinaryUser user(world.path());
    const auto stream = watch();
    EXPECT_THAT(log.sentences(), ElementsAre(HasSubstr("Permission denied")));
}

TEST_F(SystemFileEventsTest, TellOfNothingThatWasThereBefore) {
    makeFile(root / "folder/file");
    const auto stream = watch();
    makeFile(root / "new");
    ASSERT_TRUE(log.tells(root / "new"));
    EXPECT_THAT(log.below(world.path()), ElementsAre(root / "new"));
}

TEST_F(SystemFileEventsTest, TellOfARootBehindLinksByItsOwnText) {
    makeLink(world / "link", root);
    const auto stream = events->begin({world / "link", world / "link/sub/../late"}, log.listener());
    makeFile(root / "folder/file");
    EXPECT_TRUE(log.tells(world / "link/folder/file"));
    EXPECT_THAT(log.below(root), IsEmpty());
}

TEST_F(SystemFileEventsTest, GatherForAQuarterOfASecond) {
    const auto stream = watch();
    for (int count = 0; count < 5; ++count) {
        const fs::path file = root / std::to_string(count);
        makeFile(file);
        ASSERT_TRUE(log.tells(file));
    }
    const auto times = log.times();
    for (std::size_t index = 1; index < times.size(); ++index)
        EXPECT_GE(times[index] - times[index - 1], std::chrono::milliseconds(245));
}

TEST_F(SystemFileEventsTest, TellAtTheEndWhatTheSystemHasToldOfBefore) {
    auto stream = watch();
    makeFile(root / "first");
    ASSERT_TRUE(log.tells(root / "first"));
    makeFile(root / "folder/last");
    stream.reset();
    EXPECT_TRUE(log.hasTold(root / "folder/last"));
}

TEST_F(SystemFileEventsTest, TellOfAVolumeThatComesAndGoes) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    auto volume = std::make_optional(test::RealVolume::memory(root, 8 * test::megabyte));
    const fs::path place = volume->path();
    const auto stream = watch();
    makeFile(place / "file");
    ASSERT_TRUE(log.tells(place / "file"));
    volume.reset();
    EXPECT_TRUE(log.tells(place));
    makeFile(root / "still/here");
    EXPECT_TRUE(log.tells(root / "still/here"));
}

/// A watched root whose listener stands still, so that the system has to keep the events until it has no room for more.
class LostEventsTest : public SystemFileEventsTest {
protected:
    void SetUp() override {
        constexpr int mostToMake = 200'000;
        std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> m_room;
        if (m_room <= 0 || m_room > mostToMake) GTEST_SKIP() << "The system keeps so many events that none get lost.";
    }

    std::unique_ptr<FileEvents::Stream> watchAndStandStill() {
        auto listener = log.listener();
        listener.happened = [this, note = listener.happened](const std::vector<std::string>& paths) {
            gate.pass();
            note(paths);
        };
        auto stream = events->begin({root}, listener);
        gate.close();
        makeFile(root / "first");
        gate.waitForSomebody();
        return stream;
    }
    /// More events than the system keeps.
    void makeTooMuchHappen() const {
        makeFile(root / "one");
        makeFile(root / "other");
        for (int count = 0; count <= m_room; ++count)
            fs::permissions(root / (count % 2 == 0 ? "one" : "other"), fs::perms::owner_all);
    }

    test::Gate gate;

private:
    int m_room = 0;
};

TEST_F(LostEventsTest, AreMadeUpForByALookAtWhatIsThere) {
    makeFile(root / "old/kept");
    makeFile(root / "old/changed");
    makeFolder(root / "removed/deep");
    makeFolder(root / "renamed/deep");
    makeFile(world / "ready/deep/file");
    const auto past = fs::file_time_type::clock::now() - std::chrono::hours(1);
    const auto stream = watchAndStandStill();
    makeTooMuchHappen();
    makeFile(root / "new/deep/file");
    makeFile(root / "old/changed", "anew");
    fs::remove_all(root / "removed");
    fs::rename(root / "renamed", root / "named");
    fs::rename(world / "ready", root / "moved in");
    fs::last_write_time(root / "new/deep/file", past);
    gate.open();
    EXPECT_THAT(
        log.missingOf({root / "new", root / "new/deep/file", root / "old/changed", root / "removed",
                       root / "removed/deep", root / "renamed", root / "named/deep", root / "moved in/deep/file"}),
        IsEmpty());
    EXPECT_THAT(log.sentences(), ElementsAre(HasSubstr("at once")));
    for (const fs::path folder : {"new/deep", "named/deep", "moved in/deep"}) {
        makeFile(root / folder / "later");
        EXPECT_TRUE(log.tells(root / folder / "later"));
    }
}

TEST_F(LostEventsTest, AreMadeUpForARootThatHasGoneAndCome) {
    makeFile(root / "file");
    const auto stream = watchAndStandStill();
    makeTooMuchHappen();
    fs::remove_all(root);
    makeFile(root / "new/file");
    gate.open();
    EXPECT_THAT(log.missingOf({root, root / "new/file"}), IsEmpty());
    makeFile(root / "new/later");
    EXPECT_TRUE(log.tells(root / "new/later"));
}

}  // namespace
}  // namespace tarvik
