#pragma once

#include "Platform/Basics/Path.h"
#include "UninstallRun/AppUninstallSession.h"

#include <optional>
#include <string>
#include <vector>

/// The records of uninstalls: each in the file `session.json` of a folder that is named for its id. Every operation
/// blocks; any thread.
namespace tarvik::UninstallSessionStore {

/// Flushed when it returns, but not written in one step: a reader may find no record meanwhile, or a part of one, which
/// it takes for none. What stood there under that id is replaced. @throws FileError when the folder or the file cannot
/// be made.
void save(const AppUninstallSession& session, const fs::path& root);
/// The newest first. What cannot be read as a record is left out.
std::vector<AppUninstallSession> list(const fs::path& root);
/// The record in a session's folder, and the one with an id; nothing when there is none.
std::optional<AppUninstallSession> load(const fs::path& folder);
std::optional<AppUninstallSession> find(const std::string& id, const fs::path& root);

}  // namespace tarvik::UninstallSessionStore
