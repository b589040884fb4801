#include "Platform/Files/Files.h"
#include "Support/FailureOf.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"
#include "UninstallRun/UninstallJournalFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

UninstallJournal journalOf(const std::string& name) {
    return {.appPath = "/Applications/" + name + ".app",
            .appName = name,
            .bundleIdentifier = {},
            .startedAt = std::chrono::system_clock::time_point(std::chrono::seconds(1'794'764'743)),
            .items = {}};
}

/// No file of this process grows beyond `bytes` while it lives.
class FileSizeLimit {
public:
    explicit FileSizeLimit(std::uintmax_t bytes) {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        ::rlimit limit = m_before;
        limit.rlim_cur = static_cast<::rlim_t>(bytes);
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    ::rlimit m_before{};
    void (*m_handler)(int) = std::signal(SIGXFSZ, SIG_IGN);
};

}  // namespace

TEST(UninstallJournalFile, IsOfARunThatIsUnderWayUntilThatEnds) {
    const TemporaryFolder root;
    {
        // Two runs of one second.
        const auto first = UninstallJournalFile::begin(root.path(), journalOf("Foo"));
        const auto second = UninstallJournalFile::begin(root.path(), journalOf("Bar"));
        EXPECT_NE(first.path(), second.path());
        EXPECT_THAT(UninstallJournals::interrupted(root.path()), IsEmpty());
    }
    std::vector<std::string> names;
    for (const auto& found : UninstallJournals::interrupted(root.path())) {
        names.push_back(found.journal.appName);
        EXPECT_EQ(found.journal, journalOf(names.back()));
        EXPECT_EQ(UninstallJournals::ofSession(root.path(), "interrupted-" + found.name), found.journal);
    }
    EXPECT_THAT(names, testing::UnorderedElementsAre("Foo", "Bar"));
}

TEST(UninstallJournalFile, HandsEachLineToTheSystemAtOnce) {
    const TemporaryFolder root;
    auto file = UninstallJournalFile::begin(root.path(), journalOf("Foo"));
    const std::string opening = contentOf(file.path());
    file.note("forgot\t=one\n");
    EXPECT_EQ(contentOf(file.path()), opening + "forgot\t=one\n");
    file.note("forgot\t=two\n");
    EXPECT_EQ(contentOf(file.path()), opening + "forgot\t=one\nforgot\t=two\n");
}

TEST(UninstallJournalFile, StaysBesideTheRecord) {
    const TemporaryFolder root;
    auto file = UninstallJournalFile::begin(root.path(), journalOf("Foo"));
    makeFolder(root / "20261115_174543");
    file.settleIn(root / "20261115_174543");
    EXPECT_THAT(Files::names(root / ".journals"), IsEmpty());
    EXPECT_EQ(UninstallJournals::ofSession(root.path(), "20261115_174543"), journalOf("Foo"));
    EXPECT_EQ(UninstallJournals::ofSession(root.path(), "../20261115_174543"), std::nullopt);
}

TEST(UninstallJournalFile, GluesNoLineToOneThatWasCut) {
    const TemporaryFolder root;
    auto journal = journalOf("Foo");
    for (const char* path : {"/a/one", "/a/two"})
        journal.items.push_back({.path = path, .place = path, .category = UninstallCategory::caches});
    auto file = UninstallJournalFile::begin(root.path(), journal);
    const UninstallJournal::End end{.succeeded = true, .trashedTo = "/t/one"};
    {
        // The disk is full after a few letters.
        const FileSizeLimit limit(fs::file_size(file.path()) + 10);
        file.note(UninstallJournal::lineOf(0, end));
        file.note(UninstallJournal::lineOf(0, end));
    }
    file.note(UninstallJournal::lineOf(1, end));
    journal.items[1].end = end;
    EXPECT_EQ(UninstallJournal::parsed(contentOf(file.path())), journal);
}

TEST(UninstallJournalFile, RefusesToBeTooLargeToBeRead) {
    const TemporaryFolder root;
    auto journal = journalOf("Foo");
    const fs::path path = "/" + std::string(200, 'x');
    journal.items.resize(30'000, {.path = path, .place = path, .category = UninstallCategory::caches});
    EXPECT_THAT(failureOf([&] { UninstallJournalFile::begin(root.path(), journal); }), HasSubstr("Could not write "));
    EXPECT_THAT(Files::names(root / ".journals"), IsEmpty());
}

TEST(UninstallJournalFile, SaysWhenItCannotBeWritten) {
    const TemporaryFolder root;
    makeFile(root / ".journals", "in the way");
    EXPECT_THAT(failureOf([&] { UninstallJournalFile::begin(root.path(), journalOf("Foo")); }),
                HasSubstr("Could not create the folder "));
}

TEST(UninstallJournals, PassOverWhatIsNone) {
    const TemporaryFolder root;
    makeFile(root / ".journals/20261115_174543.tsv", "nonsense");
    makeFile(root / ".journals/20261115_174544.tsv");
    makeFile(root / ".journals/note.txt", journalOf("Foo").opening());
    makePipe(root / ".journals/20261115_174545.tsv");
    EXPECT_THAT(UninstallJournals::interrupted(root.path()), IsEmpty());
}

}  // namespace tarvik::test
