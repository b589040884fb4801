#include "Records/InstallsDBWriter.h"

#include "Platform/Basics/Identifier.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/LastComponent.h"
#include "Platform/Text/Text.h"
#include "Records/InstallsDB.h"
#include "Records/InstallsDBConnection.h"

#include <fmt/format.h>

#include <string_view>

namespace tarvik {

namespace {

constexpr std::string_view insertMove = R"(
    INSERT INTO installs (install_id, app_name, bundle_id, version, source_file, source_hash,
                          install_type, confidence, uninstall_strategy, installed_at, uninstalled_at, notes)
    VALUES (?, ?, ?, ?, ?, NULL, 'app_move', 'high', 'restore_via_tarvik', ?, NULL, ?);)";

constexpr std::string_view insertTrackedFile = R"(
    INSERT INTO tracked_files (install_id, file_path, file_type, confidence) VALUES (?, ?, 'app_move', 'high');)";

constexpr std::string_view endNewestMove = R"(
    UPDATE installs SET uninstalled_at = ?
    WHERE install_id IN (
        SELECT install_id FROM installs
        WHERE install_type = 'app_move' AND app_name = ? AND uninstalled_at IS NULL
        ORDER BY installed_at DESC LIMIT 1
    );)";

constexpr std::string_view deleteTrackedFile = "DELETE FROM tracked_files WHERE install_id = ? AND file_path = ?;";

std::optional<InstallsDBConnection> openForWriting(const fs::path& database) {
    return InstallsDBConnection::open(database, InstallsDBConnection::Access::readWrite);
}

std::vector<fs::path> missingFiles(const fs::path& database, const std::string& installId) {
    std::vector<fs::path> files = InstallsDB::trackedFiles(database, installId);
    // What may not be looked at is kept.
    std::erase_if(files, [](const fs::path& file) { return !Files::isMissing(file); });
    return files;
}

}  // namespace

void InstallsDBWriter::recordMove(const Host& host, const Move& move, const fs::path& database) {
    auto connection = openForWriting(database);
    if (!connection) return;
    auto statement = connection->prepare(insertMove);
    if (!statement) return;

    const std::string installId = "tarvik-" + newIdentifier();
    const bool isInserted = statement->bind(installId)
                                .bind(lastComponent(move.source))
                                .bind(move.bundleId)
                                .bind(move.version)
                                .bind(move.destination.native())
                                .bind(Text::isoDate(host.now()))
                                .bind(fmt::format("moved by Tarvik; symlink at {} -> {}; {} bytes",
                                                  move.source.native(), move.destination.native(), move.sizeBytes))
                                .run();
    if (!isInserted) return;
    for (const fs::path& file : move.trackedFiles)
        if (auto insertion = connection->prepare(insertTrackedFile))
            insertion->bind(installId).bind(file.native()).run();
}

void InstallsDBWriter::recordRestore(const Host& host, const fs::path& source, const fs::path& database) {
    auto connection = openForWriting(database);
    if (!connection) return;
    if (auto statement = connection->prepare(endNewestMove))
        statement->bind(Text::isoDate(host.now())).bind(lastComponent(source)).run();
}

int InstallsDBWriter::forgetMissingTrackedFiles(const std::string& installId, const fs::path& database) {
    auto connection = openForWriting(database);
    if (!connection) return 0;
    int removed = 0;
    for (const fs::path& file : missingFiles(database, installId)) {
        auto statement = connection->prepare(deleteTrackedFile);
        if (statement && statement->bind(installId).bind(file.native()).run()) removed += connection->changedRows();
    }
    return removed;
}

}  // namespace tarvik
