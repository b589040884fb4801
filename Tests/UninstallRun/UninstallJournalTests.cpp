#include "Support/Mutator.h"
#include "UninstallRun/UninstallJournal.h"

#include <gtest/gtest.h>

namespace tarvik::test {

namespace {

UninstallJournal full() {
    UninstallJournal journal{.appPath = "/Applications/A\tB\n.app",
                             .appName = "\\n-",
                             .bundleIdentifier = "",
                             .startedAt = std::chrono::system_clock::time_point(std::chrono::seconds(1794764743)),
                             .items = {}};
    const ItemIdentity identity{
        .type = Files::ItemType::folder, .inode = ~std::uint64_t{0}, .size = -1, .changed = -1'000'000'000, .born = 12};
    ItemIdentity unborn = identity;
    unborn.born.reset();
    journal.items.push_back({.path = "/a\xff\\t\r",
                             .place = "/real/a\xff\\t\r",
                             .category = UninstallCategory::executable,
                             .sizeBytes = 1,
                             .identity = identity});
    journal.items.push_back(
        {.path = "/b", .place = "/b", .category = UninstallCategory::caches, .sizeBytes = 0, .identity = unborn});
    journal.items.push_back(
        {.path = "/-", .place = "/-", .category = UninstallCategory::logs, .sizeBytes = 0, .identity = {}});
    return journal;
}

}  // namespace

TEST(UninstallJournal, ComesBackAsItWasWritten) {
    UninstallJournal journal = full();
    EXPECT_EQ(UninstallJournal::parsed(journal.opening()), journal);
    std::string text = journal.opening();
    const UninstallJournal::End trashed{.succeeded = true, .trashedTo = "/Trash/\t\n", .stashedTo = {}};
    const UninstallJournal::End stashed{.succeeded = false, .trashedTo = {}, .stashedTo = "/s/.TarvikTrash"};
    journal.items[0].end = trashed;
    journal.items[2].end = stashed;
    journal.forgottenReceipts = {"org.example.pkg"};
    journal.sessionId = "20261115_174543";
    text += UninstallJournal::lineOf(0, trashed) + UninstallJournal::lineOf(2, stashed) +
            UninstallJournal::lineOfReceipt("org.example.pkg") + UninstallJournal::lineOfSession("20261115_174543");
    EXPECT_EQ(UninstallJournal::parsed(text), journal);
}

TEST(UninstallJournal, IsReadAsFarAsItGoes) {
    UninstallJournal journal = full();
    const std::string opening = journal.opening();
    const std::string line = UninstallJournal::lineOf(1, {.succeeded = true, .trashedTo = "/t/b"});
    for (std::size_t length = 0; length < opening.size(); ++length)
        EXPECT_EQ(UninstallJournal::parsed(opening.substr(0, length)), std::nullopt) << length;
    for (std::size_t length = 0; length < line.size(); ++length)
        EXPECT_EQ(UninstallJournal::parsed(opening + line.substr(0, length)), journal) << length;
    EXPECT_EQ(UninstallJournal::parsed(opening + "went\t99\ttrue\t-\t-\nwhatever\n" + line)->items[1].end->trashedTo,
              "/t/b");
}

TEST(UninstallJournal, NamesNoPathThatNoRunWrites) {
    const auto isRead = [](const fs::path& path, const fs::path& place) {
        UninstallJournal journal = full();
        journal.items.push_back({.path = path, .place = place});
        return UninstallJournal::parsed(journal.opening()).has_value();
    };
    const std::string nul(1, '\0');
    EXPECT_TRUE(isRead("/a/Foo.app", "/b/Foo.app"));
    for (const std::string& path : {"/a/Foo.desktop" + nul + ".app", std::string("a/Foo.app"), std::string(""),
                                    std::string("/a/../Foo.app"), std::string("/a/Foo.app/"), std::string("/")}) {
        EXPECT_FALSE(isRead(path, path)) << path;
        EXPECT_FALSE(isRead("/a/Foo.app", path)) << path;
    }
    EXPECT_FALSE(isRead("/a/Foo.app", "/a/Bar.app"));
    const std::string line = UninstallJournal::lineOf(0, {.succeeded = true, .trashedTo = "/t/a" + nul + "b"});
    EXPECT_EQ(UninstallJournal::parsed(full().opening() + line)->items[0].end->trashedTo, std::nullopt);
}

TEST(UninstallJournal, HoldsNoMoreThanAnyApplicationHas) {
    UninstallJournal journal = full();
    journal.items.resize(UninstallJournal::mostItems + 1, journal.items[1]);
    EXPECT_EQ(UninstallJournal::parsed(journal.opening()), std::nullopt);
}

TEST(UninstallJournal, PassesOverALineThatCouldOnlyBeWrittenInPart) {
    const std::string whole = UninstallJournal::lineOf(0, {.succeeded = true, .trashedTo = "/t/a", .stashedTo = "/s"});
    const std::string next = UninstallJournal::lineOf(1, {.succeeded = true, .trashedTo = "/t/b"});
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const std::string text = whole.substr(0, length) + std::string(UninstallJournal::endOfCutLine) + next;
        const auto journal = UninstallJournal::parsed(full().opening() + text);
        ASSERT_TRUE(journal.has_value());
        EXPECT_EQ(journal->items[0].end, std::nullopt) << text;
        EXPECT_EQ(journal->items[1].end->trashedTo, "/t/b") << text;
    }
}

TEST(UninstallJournal, IsNeverReadWrongly) {
    const std::string good = full().opening() + UninstallJournal::lineOf(0, {.succeeded = true, .trashedTo = "/t/a"});
    Mutator mutator(12, {"\t", "\n", "begin\n", "item\t", "went\t0\ttrue\t=/\t-\n", "999999999999999999999"});
    for (int turn = 0; turn < 20'000; ++turn) {
        const auto journal = UninstallJournal::parsed(mutator.mutated(good));
        if (journal && !journal->items.empty()) {
            EXPECT_EQ(UninstallJournal::parsed(journal->opening())->items.size(), journal->items.size());
        }
    }
}

}  // namespace tarvik::test
