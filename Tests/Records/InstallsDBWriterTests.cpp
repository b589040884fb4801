#include "Records/InstallsDB.h"
#include "Records/InstallsDBConnection.h"
#include "Records/InstallsDBWriter.h"
#include "Support/RealVolume.h"
#include "Support/TrackingDatabase.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

using test::askDatabase;
using test::makeFile;
using test::makeTrackingDatabase;

const InstallsDBWriter::Move fooMove = {.source = "/Applications/Foo.app",
                                        .destination = "/Volumes/T/ExternalTarvik/Apps/Foo.app",
                                        .bundleId = "com.acme.foo",
                                        .version = "1.2",
                                        .sizeBytes = 4200};

class WrittenDatabase : public testing::Test {
protected:
    WrittenDatabase() { makeTrackingDatabase(database); }

    std::string answer(const std::string& sql) const { return askDatabase(database, sql); }
    /// Every row's name, type, beginning and end, in the order of writing.
    std::string rows() const {
        return answer("SELECT app_name, install_type, installed_at, uninstalled_at FROM installs ORDER BY rowid;");
    }
    void setClock(std::int64_t secondsLater) {
        world.host.now = [=] {
            return std::chrono::system_clock::time_point(std::chrono::seconds(test::madeNow + secondsLater));
        };
    }
    void moveFoo() const { InstallsDBWriter::recordMove(world.host, fooMove, database); }
    void restoreFoo() const { InstallsDBWriter::recordRestore(world.host, fooMove.source, database); }

    test::World world;
    const fs::path database = world.folder / "installs.db";
};

TEST_F(WrittenDatabase, TellsAllOfAMove) {
    moveFoo();
    EXPECT_EQ(answer("SELECT app_name, bundle_id, version, source_file, install_type, confidence, uninstall_strategy, "
                     "installed_at, notes FROM installs;"),
              "Foo.app|com.acme.foo|1.2|/Volumes/T/ExternalTarvik/Apps/Foo.app|app_move|high|restore_via_tarvik|"
              "2026-11-15T17:45:43Z|moved by Tarvik; symlink at /Applications/Foo.app -> "
              "/Volumes/T/ExternalTarvik/Apps/Foo.app; 4200 bytes\n");
    EXPECT_EQ(answer("SELECT source_hash IS NULL, uninstalled_at IS NULL FROM installs;"), "1|1\n");
    EXPECT_THAT(answer("SELECT install_id FROM installs;"),
                testing::MatchesRegex("tarvik-[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}\n"));
}

TEST_F(WrittenDatabase, HoldsNullForWhatIsNotKnown) {
    auto move = fooMove;
    move.bundleId.reset();
    move.version.reset();
    InstallsDBWriter::recordMove(world.host, move, database);
    EXPECT_EQ(answer("SELECT bundle_id IS NULL, version IS NULL FROM installs;"), "1|1\n");
}

TEST_F(WrittenDatabase, ListsTheTrackedFilesOfAMove) {
    auto move = fooMove;
    move.trackedFiles = {"/a b", "/caf\xE9"};
    InstallsDBWriter::recordMove(world.host, move, database);
    EXPECT_EQ(answer("SELECT hex(file_path), file_type, confidence FROM tracked_files ORDER BY rowid;"),
              "2F612062|app_move|high\n2F636166E9|app_move|high\n");
    EXPECT_EQ(answer("SELECT count(*) FROM tracked_files JOIN installs USING (install_id);"), "2\n");
}

TEST_F(WrittenDatabase, KeepsPathsThatAreNoText) {
    InstallsDBWriter::recordMove(world.host, {.source = "/caf\xE9.app", .destination = "/Volumes/T/caf\xE9.app"},
                                 database);
    EXPECT_EQ(answer("SELECT hex(app_name), hex(source_file) FROM installs;"),
              "636166E92E617070|2F566F6C756D65732F542F636166E92E617070\n");
    InstallsDBWriter::recordRestore(world.host, "/caf\xE9.app", database);
    EXPECT_EQ(answer("SELECT uninstalled_at FROM installs;"), "2026-11-15T17:45:43Z\n");
}

TEST_F(WrittenDatabase, IsFoundByItsReader) {
    moveFoo();
    const auto entry = InstallsDB::entryForAppName(database, "Foo.app");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->installType, "app_move");
    EXPECT_EQ(InstallsDB::entryForBundleId(database, "com.acme.foo"), entry);
    restoreFoo();
    EXPECT_EQ(InstallsDB::entryForAppName(database, "Foo.app"), std::nullopt);
}

TEST_F(WrittenDatabase, ClosesOnlyTheNewerOfTwoMoves) {
    moveFoo();
    setClock(60);
    moveFoo();
    setClock(120);
    restoreFoo();
    EXPECT_EQ(rows(),
              "Foo.app|app_move|2026-11-15T17:45:43Z|\n"
              "Foo.app|app_move|2026-11-15T17:46:43Z|2026-11-15T17:47:43Z\n");
    setClock(180);
    restoreFoo();
    restoreFoo();
    EXPECT_EQ(rows(),
              "Foo.app|app_move|2026-11-15T17:45:43Z|2026-11-15T17:48:43Z\n"
              "Foo.app|app_move|2026-11-15T17:46:43Z|2026-11-15T17:47:43Z\n");
}

TEST_F(WrittenDatabase, LeavesTheToolsOwnRowsOpen) {
    answer(
        "INSERT INTO installs (install_id, app_name, install_type, installed_at) VALUES "
        "('i1', 'Foo.app', 'dmg', '2030-01-01T00:00:00Z'), ('i2', 'Foo.app', NULL, '2030-01-01T00:00:00Z');");
    moveFoo();
    restoreFoo();
    restoreFoo();
    EXPECT_EQ(rows(),
              "Foo.app|dmg|2030-01-01T00:00:00Z|\n"
              "Foo.app||2030-01-01T00:00:00Z|\n"
              "Foo.app|app_move|2026-11-15T17:45:43Z|2026-11-15T17:45:43Z\n");
}

TEST_F(WrittenDatabase, ClosesNothingOfAnotherName) {
    moveFoo();
    InstallsDBWriter::recordRestore(world.host, "/Applications/Foo", database);
    InstallsDBWriter::recordRestore(world.host, "/Applications/foo.app", database);
    EXPECT_EQ(rows(), "Foo.app|app_move|2026-11-15T17:45:43Z|\n");
}

TEST_F(WrittenDatabase, ForgetsTheTrackedFilesThatAreGone) {
    const fs::path there = world.folder / "there";
    const fs::path gone = world.folder / "gone";
    const fs::path dangling = world.folder / "dangling";
    makeFile(there);
    test::makeLink(dangling, gone);
    for (const auto& [id, path] : std::vector<std::pair<std::string, fs::path>>{
             {"i1", there}, {"i1", gone}, {"i1", gone}, {"i1", dangling}, {"i1", "/caf\xE9"}, {"i2", gone}})
        ASSERT_TRUE(InstallsDBConnection::open(database, InstallsDBConnection::Access::readWrite)
                        ->prepare("INSERT INTO tracked_files (install_id, file_path) VALUES (?, ?);")
                        ->bind(id)
                        .bind(path.native())
                        .run());
    EXPECT_EQ(InstallsDBWriter::forgetMissingTrackedFiles("i1", database), 4);
    EXPECT_EQ(InstallsDB::trackedFiles(database, "i1"), std::vector{there});
    EXPECT_EQ(InstallsDB::trackedFiles(database, "i2"), std::vector{gone});
    EXPECT_EQ(InstallsDBWriter::forgetMissingTrackedFiles("i1", database), 0);
    EXPECT_EQ(InstallsDBWriter::forgetMissingTrackedFiles("i3", database), 0);
}

TEST_F(WrittenDatabase, LosesARecordWhileSomeoneElseWrites) {
    moveFoo();
    answer("INSERT INTO tracked_files (install_id, file_path) VALUES ('i1', '/gone');");
    auto other = InstallsDBConnection::open(database, InstallsDBConnection::Access::readWrite);
    ASSERT_TRUE(other->prepare("BEGIN IMMEDIATE;")->run());
    moveFoo();
    restoreFoo();
    EXPECT_EQ(InstallsDBWriter::forgetMissingTrackedFiles("i1", database), 0);
    ASSERT_TRUE(other->prepare("COMMIT;")->run());
    EXPECT_EQ(rows(), "Foo.app|app_move|2026-11-15T17:45:43Z|\n");
    EXPECT_EQ(InstallsDBWriter::forgetMissingTrackedFiles("i1", database), 1);
}

TEST_F(WrittenDatabase, TracksNoFilesOfAMoveThatItRefused) {
    answer("CREATE TRIGGER no BEFORE INSERT ON installs BEGIN SELECT RAISE(ABORT, 'no'); END;");
    auto move = fooMove;
    move.trackedFiles = {"/a"};
    InstallsDBWriter::recordMove(world.host, move, database);
    EXPECT_EQ(answer("SELECT count(*) FROM tracked_files;"), "0\n");
}

TEST_F(WrittenDatabase, PassesOverATrackedFileThatItRefused) {
    answer(
        "CREATE TRIGGER no BEFORE INSERT ON tracked_files WHEN new.file_path = '/b' "
        "BEGIN SELECT RAISE(ABORT, 'no'); END;");
    auto move = fooMove;
    move.trackedFiles = {"/a", "/b", "/c"};
    InstallsDBWriter::recordMove(world.host, move, database);
    EXPECT_EQ(answer("SELECT file_path FROM tracked_files ORDER BY rowid;"), "/a\n/c\n");
}

TEST_F(WrittenDatabase, KeepsAMoveWhenNoFilesCanBeTracked) {
    answer("DROP TABLE tracked_files;");
    auto move = fooMove;
    move.trackedFiles = {"/a"};
    InstallsDBWriter::recordMove(world.host, move, database);
    EXPECT_EQ(rows(), "Foo.app|app_move|2026-11-15T17:45:43Z|\n");
    EXPECT_EQ(InstallsDBWriter::forgetMissingTrackedFiles("i1", database), 0);
}

TEST_F(WrittenDatabase, StaysAsItIsOnAVolumeThatCannotBeWritten) {
    if (const auto reason = test::RealVolume::unavailableReason(test::RealVolume::Kind::memory))
        TARVIK_SKIP_BECAUSE(*reason);
    const test::TemporaryFolder folder;
    auto volume = test::RealVolume::memory(folder.path(), 1 << 20);
    const fs::path readOnly = volume.path() / "installs.db";
    makeTrackingDatabase(readOnly);
    askDatabase(readOnly, "INSERT INTO tracked_files (install_id, file_path) VALUES ('i1', '/gone');");
    InstallsDBWriter::recordMove(world.host, fooMove, readOnly);
    volume.remountReadOnly();
    InstallsDBWriter::recordMove(world.host, fooMove, readOnly);
    InstallsDBWriter::recordRestore(world.host, fooMove.source, readOnly);
    EXPECT_EQ(InstallsDBWriter::forgetMissingTrackedFiles("i1", readOnly), 0);
    EXPECT_EQ(InstallsDB::trackedFiles(readOnly, "i1"), std::vector<fs::path>{"/gone"});
    EXPECT_TRUE(InstallsDB::entryForAppName(readOnly, "Foo.app"));
}

TEST(InstallsDBWriter, MakesNothingWithoutADatabase) {
    const test::World world;
    const test::TemporaryFolder folder;
    const auto databases = test::makeUselessDatabases(folder.path());
    const std::string before = test::pictureOf(folder.path());
    for (const fs::path& database : databases) {
        InstallsDBWriter::recordMove(world.host, fooMove, database);
        InstallsDBWriter::recordRestore(world.host, fooMove.source, database);
        EXPECT_EQ(InstallsDBWriter::forgetMissingTrackedFiles("i1", database), 0) << database;
    }
    EXPECT_EQ(test::pictureOf(folder.path()), before);
}

}  // namespace
}  // namespace tarvik
