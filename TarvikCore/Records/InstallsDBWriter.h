#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Tells the tool `setupbook` what was moved and what came back, in its own database.
///
/// Nothing here fails, waits for a lock, or makes a file or a table: where the database is absent, busy, damaged or of
/// another shape, the record is lost. Every operation blocks and may be called from any thread.
namespace tarvik::InstallsDBWriter {

struct Move {
    fs::path source;
    fs::path destination;
    std::optional<std::string> bundleId;
    std::optional<std::string> version;
    /// In bytes.
    std::int64_t sizeBytes = 0;
    /// Files that belong to the item, for the tool to watch.
    std::vector<fs::path> trackedFiles;
};

/// Adds a row for an item that was moved.
void recordMove(const Host& host, const Move& move, const fs::path& database);

/// Ends the newest open row that `recordMove` added for an item of this name. Rows of the tool itself are not touched.
void recordRestore(const Host& host, const fs::path& source, const fs::path& database);

/// Removes the tracked files of an entry at which nothing exists. @returns how many rows were removed.
int forgetMissingTrackedFiles(const std::string& installId, const fs::path& database);

}  // namespace tarvik::InstallsDBWriter
