#include "Records/InstallsDB.h"

#include "Platform/Basics/FieldHash.h"
#include "Platform/Files/Files.h"

#include <string_view>
#include <utility>

namespace tarvik {

namespace {

constexpr std::string_view byBundleId = R"(
    SELECT install_id, app_name, bundle_id, version, install_type, confidence, installed_at
    FROM installs
    WHERE bundle_id = ? AND uninstalled_at IS NULL
    ORDER BY installed_at DESC LIMIT 1;)";

constexpr std::string_view byAppName = R"(
    SELECT install_id, app_name, bundle_id, version, install_type, confidence, installed_at
    FROM installs
    WHERE app_name = ? AND uninstalled_at IS NULL
    ORDER BY installed_at DESC LIMIT 1;)";

}  // namespace

fs::path InstallsDB::defaultPath(const Host& host) {
    return host.home / ".claude/tools/setupbook/db/installs.db";
}

bool InstallsDB::isAvailable(const fs::path& database) {
    return Files::exists(database);
}

InstallsDB::Reader::Reader(const fs::path& database)
    : m_connection(InstallsDBConnection::open(database, InstallsDBConnection::Access::readOnly)) {}

std::optional<InstallsDB::Entry> InstallsDB::Reader::entryForBundleId(const std::string& bundleId) {
    return queriedEntry(byBundleId, bundleId);
}

std::optional<InstallsDB::Entry> InstallsDB::Reader::entryForAppName(const std::string& appName) {
    return queriedEntry(byAppName, appName);
}

std::vector<fs::path> InstallsDB::Reader::trackedFiles(const std::string& installId) {
    if (!m_connection) return {};
    auto statement = m_connection->prepare("SELECT file_path FROM tracked_files WHERE install_id = ?;");
    if (!statement) return {};
    std::vector<fs::path> files;
    statement->bind(installId);
    while (statement->nextRow())
        if (auto file = statement->text(0)) files.emplace_back(std::move(*file));
    return files;
}

std::optional<InstallsDB::Entry> InstallsDB::Reader::queriedEntry(std::string_view query, const std::string& value) {
    if (!m_connection) return std::nullopt;
    auto statement = m_connection->prepare(query);
    if (!statement || !statement->bind(value).nextRow()) return std::nullopt;
    auto installId = statement->text(0);
    auto appName = statement->text(1);
    if (!installId || !appName) return std::nullopt;
    return Entry{.installId = std::move(*installId),
                 .appName = std::move(*appName),
                 .bundleId = statement->text(2),
                 .version = statement->text(3),
                 .installType = statement->text(4).value_or(""),
                 .confidence = statement->text(5).value_or(""),
                 .installedAt = statement->text(6).value_or("")};
}

std::optional<InstallsDB::Entry> InstallsDB::entryForBundleId(const fs::path& database, const std::string& bundleId) {
    return Reader(database).entryForBundleId(bundleId);
}

std::optional<InstallsDB::Entry> InstallsDB::entryForAppName(const fs::path& database, const std::string& appName) {
    return Reader(database).entryForAppName(appName);
}

std::vector<fs::path> InstallsDB::trackedFiles(const fs::path& database, const std::string& installId) {
    return Reader(database).trackedFiles(installId);
}

}  // namespace tarvik

std::size_t std::hash<tarvik::InstallsDB::Entry>::operator()(const tarvik::InstallsDB::Entry& entry) const noexcept {
    return tarvik::FieldHash::of(entry.installId, entry.appName, entry.bundleId, entry.version, entry.installType,
                                 entry.confidence, entry.installedAt);
}
