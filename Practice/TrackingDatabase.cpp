#include "Practice/TrackingDatabase.h"

#include "Platform/Basics/Failure.h"

#include <sqlite3.h>

#include <cstddef>
#include <memory>

namespace tarvik::Practice::TrackingDatabase {

namespace {

constexpr const char* schema =
    "CREATE TABLE installs (install_id TEXT PRIMARY KEY, app_name TEXT, bundle_id TEXT, version TEXT, source_file TEXT,"
    " source_hash TEXT, install_type TEXT, confidence TEXT, uninstall_strategy TEXT, installed_at TEXT,"
    " uninstalled_at TEXT, notes TEXT);"
    "CREATE TABLE tracked_files (install_id TEXT, file_path TEXT, file_type TEXT, confidence TEXT);";

using Database = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;
using Statement = std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)>;

void require(int result, int wanted) {
    if (result != wanted) throw Failure("Practice", result, sqlite3_errstr(result));
}

/// Runs one statement with its values; an absent one is NULL.
void run(const Database& database, const char* sql, const std::vector<std::optional<std::string>>& values) {
    sqlite3_stmt* handle = nullptr;
    require(sqlite3_prepare_v2(database.get(), sql, -1, &handle, nullptr), SQLITE_OK);
    const Statement statement(handle, &sqlite3_finalize);
    for (std::size_t index = 0; index < values.size(); ++index) {
        const char* text = values[index] ? values[index]->c_str() : nullptr;
        require(sqlite3_bind_text(handle, static_cast<int>(index) + 1, text, -1, nullptr), SQLITE_OK);
    }
    require(sqlite3_step(handle), SQLITE_DONE);
}

}  // namespace

std::string bytes(const std::vector<Row>& rows) {
    sqlite3* handle = nullptr;
    const int opened = sqlite3_open(":memory:", &handle);
    const Database database(handle, &sqlite3_close);
    require(opened, SQLITE_OK);
    require(sqlite3_exec(handle, schema, nullptr, nullptr, nullptr), SQLITE_OK);
    for (const auto& row : rows) {
        run(database,
            "INSERT INTO installs (install_id, app_name, bundle_id, install_type, confidence, installed_at)"
            " VALUES (?, ?, ?, ?, 'high', ?)",
            {row.installId, row.appName, row.bundleId, row.installType, row.installedAt});
        for (const auto& file : row.files)
            run(database, "INSERT INTO tracked_files VALUES (?, ?, 'data', 'high')", {row.installId, file.native()});
    }
    sqlite3_int64 size = 0;
    const std::unique_ptr<unsigned char, decltype(&sqlite3_free)> image(sqlite3_serialize(handle, "main", &size, 0),
                                                                        &sqlite3_free);
    if (!image) throw Failure("Practice", SQLITE_NOMEM, sqlite3_errstr(SQLITE_NOMEM));
    return {reinterpret_cast<const char*>(image.get()), static_cast<std::size_t>(size)};
}

}  // namespace tarvik::Practice::TrackingDatabase
