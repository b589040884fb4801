#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <string>
#include <string_view>

/// The names that things bear in a backup: this program's own name shows in none of them.
namespace tarvik::BackupNames {

/// `name` with "App" for every "Tarvik" and "app" for every "tarvik". Pure.
std::string visible(std::string_view name);

/// The name directly in the backup's folder: one for all applications, one for what is called "app", the visible name
/// for everything else. `source` is standardized. Pure.
std::string ofSource(const fs::path& source);

/// Gives everything below `root` its visible name, what lies deepest first. What bears such a name already is set aside
/// with the reason "backup-name-conflict". Links keep their texts. A root that cannot be read is passed over. Blocks;
/// any thread. @throws FileError when an item cannot be renamed; those before it keep their new names.
void sanitizeVisibleNames(const Host& host, const fs::path& root);

}  // namespace tarvik::BackupNames
