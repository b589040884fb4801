#include "Support/TrackingDatabase.h"

#include "Platform/Processes/CommandRunner.h"
#include "Support/Tree.h"

#include <stdexcept>

namespace tarvik::test {

namespace {

constexpr const char* schema = R"(
    CREATE TABLE installs (
        install_id TEXT PRIMARY KEY NOT NULL, app_name TEXT, bundle_id TEXT, version TEXT, source_file TEXT,
        source_hash TEXT, install_type TEXT, confidence TEXT, uninstall_strategy TEXT, installed_at TEXT,
        uninstalled_at TEXT, notes TEXT);
    CREATE TABLE tracked_files (install_id TEXT NOT NULL, file_path TEXT, file_type TEXT, confidence TEXT);)";

}  // namespace

void makeTrackingDatabase(const fs::path& database) {
    fs::create_directories(database.parent_path());
    askDatabase(database, schema);
}

std::string askDatabase(const fs::path& database, const std::string& sql) {
    const auto result =
        CommandRunner::run("/usr/bin/sqlite3", {"-batch", "-init", "/dev/null", database.native(), sql});
    if (!result.succeeded()) throw std::runtime_error("sqlite3 says: " + result.stderr);
    return result.stdout;
}

std::vector<fs::path> makeUselessDatabases(const fs::path& folder) {
    makeFile(folder / "empty.db", "");
    makeFile(folder / "text.db", std::string(5000, 'x'));
    makeFolder(folder / "folder.db");
    makePipe(folder / "pipe.db");
    makeLink(folder / "dangling.db", folder / "gone.db");
    askDatabase(folder / "other.db", "CREATE TABLE installs (name TEXT); CREATE TABLE files (path TEXT);");
    makeTrackingDatabase(folder / "torn.db");
    fs::resize_file(folder / "torn.db", 5000);
    std::vector<fs::path> databases;
    for (const char* name : {"absent.db", "empty.db", "text.db", "folder.db", "pipe.db", "dangling.db", "other.db",
                             "torn.db", "no folder/installs.db"})
        databases.push_back(folder / name);
    return databases;
}

}  // namespace tarvik::test
