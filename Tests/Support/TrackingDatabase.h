#pragma once

#include "Platform/Basics/Path.h"

#include <string>
#include <vector>

/// The tracking database of the tool `setupbook`, made and questioned with the program `sqlite3`.
namespace tarvik::test {

/// Makes a database with the tool's two tables, both empty, and the folders above it.
void makeTrackingDatabase(const fs::path& database);

/// Runs some SQL. @returns what `sqlite3` prints: a line for each row, "|" between columns, nothing for NULL.
/// @throws std::runtime_error with its words when it fails.
std::string askDatabase(const fs::path& database, const std::string& sql);

/// Makes what can stand where a database is looked for and is none. @returns the paths, also of places with nothing.
std::vector<fs::path> makeUselessDatabases(const fs::path& folder);

}  // namespace tarvik::test
