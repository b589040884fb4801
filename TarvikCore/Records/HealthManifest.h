#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"
#include "Records/HealthManifestEntry.h"

#include <vector>

/// The program's own memory of what it moved: one JSON file with an entry for each moved path, in the order of
/// recording. The health check reads it to find moved paths whose link has gone.
///
/// It is no ledger. Nothing here fails: a move is not undone because the manifest could not be written, and a damaged
/// file gives way to the next record. What it held is then kept beside it, as "health-manifest (damaged
/// 2026-11-15).json". Where it only cannot be read for the moment, for want of memory or handles, it stays, and what
/// was to be changed is not. Two changes at one time, by two programs too, wait for each other, but not for longer than
/// two seconds. Every operation blocks and may be called from any thread.
namespace tarvik::HealthManifest {

/// Where the file stands, in the user's Library.
fs::path file(const Host& host);

/// The entries; empty when the file is missing, cannot be read, is not a whole manifest or has more than 64 MB, and
/// when there is no memory for them.
std::vector<HealthManifestEntry> load(const Host& host) noexcept;

/// Puts `entry` at the end, in the place of what is recorded for its source path.
void record(const Host& host, const HealthManifestEntry& entry);

/// Removes what is recorded for `sourcePath`, which is compared as exact text. The file is written in any case.
void forget(const Host& host, const fs::path& sourcePath);

}  // namespace tarvik::HealthManifest
