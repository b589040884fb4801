#include "Installers/Tracking/FilesystemEventRecorder.h"
#include "Support/EventLog.h"
#include "Support/HostOf.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace tarvik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

/// Events as a test wants them.
class MadeFileEvents : public FileEvents {
public:
    class MadeStream : public Stream {
    public:
        explicit MadeStream(std::atomic<int>& open) : m_open(open) { ++m_open; }
        ~MadeStream() override { --m_open; }

    private:
        std::atomic<int>& m_open;
    };

    std::unique_ptr<Stream> begin(const std::vector<fs::path>& roots, Listener listener) const override {
        begun.push_back(roots);
        told = std::move(listener);
        if (refuses) {
            told.missed("Refused.");
            return nullptr;
        }
        return std::make_unique<MadeStream>(open);
    }

    bool refuses = false;
    mutable std::vector<std::vector<fs::path>> begun;
    mutable Listener told;
    mutable std::atomic<int> open = 0;
};

class RecorderTest : public testing::Test {
protected:
    RecorderTest() { host.fileEvents = events; }

    const std::shared_ptr<MadeFileEvents> events = std::make_shared<MadeFileEvents>();
    Host host = test::hostOf("/", "/home");
};

TEST_F(RecorderTest, WatchesItsStandardizedRootsOnce) {
    FilesystemEventRecorder recorder(host, {"/a/./b//", "/c/../d"});
    EXPECT_THAT(events->begun, IsEmpty());
    recorder.start();
    recorder.start();
    EXPECT_THAT(events->begun, ElementsAre(ElementsAre("/a/b", "/d")));
    EXPECT_EQ(events->open, 1);
    recorder.stop();
    EXPECT_EQ(events->open, 0);
}

TEST_F(RecorderTest, WatchesNothingWithoutRoots) {
    FilesystemEventRecorder recorder(host, {});
    recorder.start();
    EXPECT_THAT(events->begun, IsEmpty());
    EXPECT_THAT(recorder.stop(), IsEmpty());
}

TEST_F(RecorderTest, GivesEachPathOnceStandardizedAndSorted) {
    FilesystemEventRecorder recorder(host, {"/a"});
    recorder.start();
    events->told.happened({"/a/b/", "/a/./b", "/a//c", "/a/x/../y", "/a b", "/a"});
    events->told.happened({"/a/\xff", "/a/c", "/"});
    EXPECT_THAT(recorder.stop(), ElementsAre("/", "/a", "/a b", "/a/b", "/a/c", "/a/y", "/a/\xff"));
}

TEST_F(RecorderTest, KeepsWhatItHasNotedWhenItBeginsAgain) {
    FilesystemEventRecorder recorder(host, {"/a"});
    recorder.start();
    events->told.happened({"/a/1"});
    EXPECT_THAT(recorder.stop(), ElementsAre("/a/1"));
    recorder.start();
    events->told.happened({"/a/2"});
    EXPECT_THAT(recorder.stop(), ElementsAre("/a/1", "/a/2"));
    EXPECT_THAT(recorder.stop(), ElementsAre("/a/1", "/a/2"));
}

TEST_F(RecorderTest, HasNothingWhereThereAreNoEvents) {
    events->refuses = true;
    FilesystemEventRecorder refused(host, {"/a"});
    refused.start();
    EXPECT_THAT(refused.stop(), IsEmpty());
    EXPECT_THAT(refused.warnings(), ElementsAre("Refused."));
    host.fileEvents = nullptr;
    FilesystemEventRecorder without(host, {"/a"});
    without.start();
    EXPECT_THAT(without.stop(), IsEmpty());
    EXPECT_THAT(FilesystemEventRecorder(host, {"/a"}).stop(), IsEmpty()) << "nor before it begins";
}

TEST_F(RecorderTest, TellsOfEachShortfallOnce) {
    FilesystemEventRecorder recorder(host, {"/a"});
    recorder.start();
    EXPECT_THAT(recorder.warnings(), IsEmpty());
    events->told.missed("Too many.");
    events->told.missed("Too many.");
    events->told.missed("Too much.");
    EXPECT_THAT(recorder.warnings(), ElementsAre("Too many.", "Too much."));
}

TEST_F(RecorderTest, EndsItsStreamWithItsLife) {
    {
        FilesystemEventRecorder recorder(host, {"/a"});
        recorder.start();
    }
    EXPECT_EQ(events->open, 0);
}

TEST_F(RecorderTest, IsToldByAnotherThread) {
    FilesystemEventRecorder recorder(host, {"/a"});
    recorder.start();
    std::thread teller([&] {
        for (int count = 0; count < 1000; ++count) {
            events->told.happened({fmt::format("/a/{:04}", count)});
            events->told.missed("Too many.");
        }
    });
    while (recorder.warnings().empty()) std::this_thread::yield();
    teller.join();
    EXPECT_EQ(recorder.stop().size(), 1000U);
}

/// The system's events, which a log hears too.
class OverheardEvents : public FileEvents {
public:
    explicit OverheardEvents(const test::EventLog& log) : m_log(log) {}

    std::unique_ptr<Stream> begin(const std::vector<fs::path>& roots, Listener listener) const override {
        listener.happened = [first = listener.happened, second = m_log.listener().happened](const auto& paths) {
            first(paths);
            second(paths);
        };
        return makeSystemFileEvents()->begin(roots, listener);
    }

private:
    const test::EventLog m_log;
};

TEST(Recorder, NotesWhatNoListingShows) {
    const test::TemporaryFolder world;
    const fs::path root = world / "root";
    test::makeFile(root / "removed");
    const test::EventLog log;
    Host host = test::hostOf("/", "/home");
    host.fileEvents = std::make_shared<OverheardEvents>(log);
    FilesystemEventRecorder recorder(host, {root, world / "nowhere"});
    recorder.start();
    test::makeFile(root / ".hidden");
    test::makeFile(root / "passing");
    fs::remove(root / "passing");
    fs::remove(root / "removed");
    const std::vector<std::string> expected = {root / ".hidden", root / "passing", root / "removed"};
    ASSERT_THAT(log.missingOf(expected), IsEmpty());
    EXPECT_THAT(recorder.stop(), IsSupersetOf(expected));
    EXPECT_THAT(recorder.warnings(), IsEmpty());
}

}  // namespace
}  // namespace tarvik
