#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"
#include "Records/InstallsDB.h"

#include <optional>

/// Finds what the tracking database knows of an application that was moved.
namespace tarvik::InstallsDBEntryResolver {

/// By the bundle identifier of the moved bundle at `target`, or else by the name of the link at `symlinkLocation`.
/// Blocks, never fails; safe on every thread.
std::optional<InstallsDB::Entry> resolve(const Host& host, const fs::path& symlinkLocation, const fs::path& target);

}  // namespace tarvik::InstallsDBEntryResolver
