#pragma once

#include "Discovery/AppEntry.h"
#include "Discovery/SymlinkEntry.h"
#include "Move/ByteProgress.h"
#include "Move/MoveRun.h"
#include "Platform/Host.h"
#include "Platform/Path.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// The way back of applications, for every front.
namespace tarvik::AppRestore {

/// The link or the launcher that stands for the application: at its bundle, or at a folder above it, up to the folders
/// of applications. An application in a moved folder comes back with the whole folder. Measures what is to come back;
/// blocks; nothing when no link stands for it.
std::optional<SymlinkEntry> restoreEntry(const Host& host, const AppEntry& entry);

/// The same for several applications, in order, each link once.
std::vector<SymlinkEntry> dedupedRestoreEntries(const Host& host, const std::vector<AppEntry>& entries);

/// The last components of the links, for the question.
std::vector<std::string> namesOf(const std::vector<SymlinkEntry>& links);

/// What came of a restore of several items.
struct Outcome {
    std::int64_t total = 0;
    /// "{name}: {description}", one for each item that did not come back.
    std::vector<std::string> failures;

    bool operator==(const Outcome&) const = default;
};

/// The item that is being moved back, by its index; called on the calling thread.
using ItemCallback = std::function<void(std::size_t index)>;
/// The same with its progress; from a background thread.
using ItemProgressCallback = std::function<void(std::size_t index, const ByteProgress& progress)>;

/// Moves each back in order; a failure does not stop the rest. Blocks; any thread; never fails.
Outcome restoreAll(const Host& host, const std::vector<SymlinkEntry>& links, const ItemCallback& begins,
                   const ItemProgressCallback& progress);

/// The sentence for the user at the end.
MoveRun::Summary summary(const Outcome& outcome);

}  // namespace tarvik::AppRestore
