#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"
#include "Records/InstallsDBConnection.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What the tool `setupbook` knows of the applications that were installed. The database is its own: it is read here
/// and never made, and everything works without it.
///
/// Nothing here fails: without the file, or with one that cannot be read, nothing is known. Every operation blocks
/// without waiting for a lock and may be called from any thread.
namespace tarvik::InstallsDB {

/// One installed item that has not been uninstalled. Texts are bytes as the tool wrote them.
struct Entry {
    std::string installId;
    std::string appName;
    std::optional<std::string> bundleId;
    std::optional<std::string> version;
    /// Empty when they are not known.
    std::string installType;
    std::string confidence;
    std::string installedAt;

    bool operator==(const Entry&) const = default;
};

/// Where the tool keeps its database, in the user's home.
fs::path defaultPath(const Host& host);

/// Whether a file exists at the path; it need not be a database.
bool isAvailable(const fs::path& database);

/// The database, open for as many questions as one scan has: to open it anew for each takes longer than all the rest.
/// To be used by one thread.
class Reader {
public:
    explicit Reader(const fs::path& database);

    /// The newest entry with this bundle identifier, or with this name, extension included; both by exact text.
    std::optional<Entry> entryForBundleId(const std::string& bundleId);
    std::optional<Entry> entryForAppName(const std::string& appName);
    /// The files that belong to an entry, whether they exist or not.
    std::vector<fs::path> trackedFiles(const std::string& installId);

private:
    std::optional<Entry> queriedEntry(std::string_view query, const std::string& value);

    std::optional<InstallsDBConnection> m_connection;
};

/// The same for a single question.
std::optional<Entry> entryForBundleId(const fs::path& database, const std::string& bundleId);
std::optional<Entry> entryForAppName(const fs::path& database, const std::string& appName);
std::vector<fs::path> trackedFiles(const fs::path& database, const std::string& installId);

}  // namespace tarvik::InstallsDB

template <>
struct std::hash<tarvik::InstallsDB::Entry> {
    std::size_t operator()(const tarvik::InstallsDB::Entry& entry) const noexcept;
};
