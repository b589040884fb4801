#include "Records/InstallsDB.h"
#include "Records/InstallsDBConnection.h"
#include "Support/TrackingDatabase.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

#include <unordered_set>

namespace tarvik {
namespace {

using test::askDatabase;
using test::makeTrackingDatabase;

using Paths = std::vector<fs::path>;

class ReadDatabase : public testing::Test {
protected:
    ReadDatabase() { makeTrackingDatabase(database); }

    void insert(const std::string& values) const {
        askDatabase(database,
                    "INSERT INTO installs (install_id, app_name, bundle_id, version, install_type, confidence, "
                    "installed_at, uninstalled_at) VALUES (" +
                        values + ");");
    }
    /// The identifier of the entry that is found, or "none".
    std::string idForBundle(const std::string& bundleId) const {
        const auto entry = InstallsDB::entryForBundleId(database, bundleId);
        return entry ? entry->installId : "none";
    }
    std::string idForName(const std::string& name) const {
        const auto entry = InstallsDB::entryForAppName(database, name);
        return entry ? entry->installId : "none";
    }

    const test::TemporaryFolder folder;
    const fs::path database = folder / "installs.db";
};

TEST(InstallsDB, StandsInTheUsersHome) {
    const test::World world;
    EXPECT_EQ(InstallsDB::defaultPath(world.host), world.home / ".claude/tools/setupbook/db/installs.db");
}

TEST_F(ReadDatabase, TellsAllThatIsKnownOfAnApplication) {
    insert("'i1', 'Foo.app', 'com.acme.foo', '1.2', 'dmg', 'high', '2026-11-15T17:45:43Z', NULL");
    const InstallsDB::Entry expected = {.installId = "i1",
                                        .appName = "Foo.app",
                                        .bundleId = "com.acme.foo",
                                        .version = "1.2",
                                        .installType = "dmg",
                                        .confidence = "high",
                                        .installedAt = "2026-11-15T17:45:43Z"};
    EXPECT_TRUE(InstallsDB::isAvailable(database));
    EXPECT_EQ(InstallsDB::entryForBundleId(database, "com.acme.foo"), expected);
    EXPECT_EQ(InstallsDB::entryForAppName(database, "Foo.app"), expected);
}

TEST_F(ReadDatabase, TakesWhatIsNullAsUnknown) {
    insert("'i1', 'Foo.app', NULL, NULL, NULL, NULL, NULL, NULL");
    EXPECT_EQ(InstallsDB::entryForAppName(database, "Foo.app"),
              (InstallsDB::Entry{.installId = "i1", .appName = "Foo.app"}));
    insert("'i2', NULL, 'com.acme.foo', NULL, NULL, NULL, NULL, NULL");
    EXPECT_EQ(idForBundle("com.acme.foo"), "none") << "an entry needs a name";
}

TEST_F(ReadDatabase, FindsByExactTextAlone) {
    insert("'i1', 'Foo', 'com.acme.foo', NULL, NULL, NULL, NULL, NULL");
    EXPECT_EQ(idForName("Foo"), "i1");
    for (const char* name : {"Foo.app", "foo", "Fo_", "F%", "", "Foo' OR '1'='1"}) EXPECT_EQ(idForName(name), "none");
    EXPECT_EQ(idForBundle("com.acme.foo"), "i1");
    for (const char* identifier : {"com.acme.Foo", "com.acme", "Foo"}) EXPECT_EQ(idForBundle(identifier), "none");
}

TEST_F(ReadDatabase, NeverFindsWhatWasUninstalled) {
    insert("'i1', 'Foo.app', 'com.acme.foo', NULL, NULL, NULL, '2026-01-01T00:00:00Z', NULL");
    insert("'i2', 'Foo.app', 'com.acme.foo', NULL, NULL, NULL, '2026-02-01T00:00:00Z', '2026-03-01T00:00:00Z'");
    EXPECT_EQ(idForName("Foo.app"), "i1");
    askDatabase(database, "UPDATE installs SET uninstalled_at = '' WHERE install_id = 'i1';");
    EXPECT_EQ(idForName("Foo.app"), "none");
    EXPECT_EQ(idForBundle("com.acme.foo"), "none");
}

TEST_F(ReadDatabase, FindsTheNewest) {
    insert("'i1', 'Foo.app', 'com.acme.foo', NULL, NULL, NULL, '2026-01-01T00:00:00Z', NULL");
    insert("'i2', 'Foo.app', 'com.acme.foo', NULL, NULL, NULL, '2026-03-01T00:00:00Z', NULL");
    insert("'i3', 'Foo.app', 'com.acme.foo', NULL, NULL, NULL, '2026-02-01T00:00:00Z', NULL");
    insert("'i4', 'Foo.app', 'com.acme.foo', NULL, NULL, NULL, NULL, NULL");
    EXPECT_EQ(idForName("Foo.app"), "i2");
    EXPECT_EQ(idForBundle("com.acme.foo"), "i2");
}

TEST_F(ReadDatabase, ListsTheFilesOfOneEntry) {
    askDatabase(database,
                "INSERT INTO tracked_files (install_id, file_path) VALUES ('i1', '/a b'), ('i2', '/other'), "
                "('i1', NULL), ('i1', CAST(x'2F636166E9' AS TEXT)), ('i1', '/a b');");
    EXPECT_EQ(InstallsDB::trackedFiles(database, "i1"), (Paths{"/a b", "/caf\xE9", "/a b"}));
    EXPECT_EQ(InstallsDB::trackedFiles(database, "i3"), Paths());
}

TEST_F(ReadDatabase, AnswersOneQuestionAfterTheOtherAndSeesWhatIsAddedMeanwhile) {
    insert("'i1', 'Foo.app', 'com.acme.foo', NULL, NULL, NULL, '2026-01-01T00:00:00Z', NULL");
    InstallsDB::Reader reader(database);
    EXPECT_EQ(reader.entryForAppName("Foo.app").value_or(InstallsDB::Entry{}).installId, "i1");
    EXPECT_EQ(reader.entryForAppName("Bar.app"), std::nullopt);
    insert("'i2', 'Foo.app', 'com.acme.foo', NULL, NULL, NULL, '2026-02-01T00:00:00Z', NULL");
    askDatabase(database, "INSERT INTO tracked_files (install_id, file_path) VALUES ('i2', '/a');");
    EXPECT_EQ(reader.entryForBundleId("com.acme.foo").value_or(InstallsDB::Entry{}).installId, "i2")
        << "nobody is kept from writing";
    EXPECT_EQ(reader.trackedFiles("i2"), Paths{"/a"});
}

TEST_F(ReadDatabase, FindsANameThatIsNoText) {
    insert("'i1', CAST(x'636166E9' AS TEXT), NULL, NULL, NULL, NULL, NULL, NULL");
    const auto entry = InstallsDB::entryForAppName(database, "caf\xE9");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->appName, "caf\xE9");
}

TEST_F(ReadDatabase, KnowsNothingWhileSomeoneElseHoldsIt) {
    insert("'i1', 'Foo.app', 'com.acme.foo', NULL, NULL, NULL, NULL, NULL");
    askDatabase(database, "INSERT INTO tracked_files (install_id, file_path) VALUES ('i1', '/a');");
    auto other = InstallsDBConnection::open(database, InstallsDBConnection::Access::readWrite);
    ASSERT_TRUE(other->prepare("BEGIN EXCLUSIVE;")->run());
    EXPECT_EQ(idForName("Foo.app"), "none");
    EXPECT_EQ(InstallsDB::trackedFiles(database, "i1"), Paths());
    ASSERT_TRUE(other->prepare("COMMIT;")->run());
    EXPECT_EQ(idForName("Foo.app"), "i1");
    EXPECT_EQ(InstallsDB::trackedFiles(database, "i1"), Paths{"/a"});
}

TEST(InstallsDB, KnowsNothingWithoutADatabase) {
    const test::TemporaryFolder folder;
    const auto databases = test::makeUselessDatabases(folder.path());
    const std::string before = test::pictureOf(folder.path());
    for (const fs::path& database : databases) {
        EXPECT_EQ(InstallsDB::entryForAppName(database, "Foo.app"), std::nullopt) << database;
        EXPECT_EQ(InstallsDB::entryForBundleId(database, "com.acme.foo"), std::nullopt) << database;
        EXPECT_EQ(InstallsDB::trackedFiles(database, "i1"), Paths()) << database;
    }
    EXPECT_FALSE(InstallsDB::isAvailable(folder / "absent.db"));
    EXPECT_FALSE(InstallsDB::isAvailable(folder / "dangling.db"));
    EXPECT_EQ(test::pictureOf(folder.path()), before) << "no file is made or changed";
}

TEST(InstallsDBEntry, HashesAllItsFields) {
    const InstallsDB::Entry entry = {"i", "n", "b", "v", "t", "c", "d"};
    std::vector<InstallsDB::Entry> entries(7, entry);
    entries[0].installId = "x";
    entries[1].appName = "x";
    entries[2].bundleId.reset();
    entries[3].version.reset();
    entries[4].installType = "x";
    entries[5].confidence = "x";
    entries[6].installedAt = "x";
    const std::hash<InstallsDB::Entry> hash;
    for (const auto& other : entries) EXPECT_NE(hash(other), hash(entry));
    entries.push_back(entry);
    entries.push_back(entry);
    EXPECT_EQ(std::unordered_set<InstallsDB::Entry>(entries.begin(), entries.end()).size(), 8U);
}

}  // namespace
}  // namespace tarvik
