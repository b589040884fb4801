#pragma once

#include "Platform/Path.h"

#include <string>

/// The tracking database of the tool `setupbook`, made and questioned with the program `sqlite3`.
namespace tarvik::test {

/// Makes a database with the tool's two tables, both empty, and the folders above it.
void makeTrackingDatabase(const fs::path& database);

/// Runs some SQL. @returns what `sqlite3` prints: a line for each row, "|" between columns, nothing for NULL.
/// @throws std::runtime_error with its words when it fails.
std::string askDatabase(const fs::path& database, const std::string& sql);

}  // namespace tarvik::test
