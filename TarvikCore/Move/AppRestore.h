#pragma once

#include "Discovery/AppEntry.h"
#include "Discovery/SymlinkEntry.h"
#include "Move/ByteProgress.h"
#include "Move/Dialog.h"
#include "Move/MoveRun.h"
#include "Platform/Cancellation.h"
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
/// blocks; nothing when no link stands for it. Once it is cancelled, the size comes out too small.
std::optional<SymlinkEntry> restoreEntry(const Host& host, const AppEntry& entry,
                                         const Cancellation& cancellation = {});
/// The same, and nothing is measured: the size is 0.
std::optional<SymlinkEntry> unmeasuredRestoreEntry(const Host& host, const AppEntry& entry);

/// Whether what stands at `place` is a launcher whose application, at `target`, is `other` or stands in it: when that
/// comes back, the launcher goes.
bool goesWith(const fs::path& place, const fs::path& target, const fs::path& other);

/// The same for several applications, in order, each link once. Launchers that go when another one comes back are left
/// out.
std::vector<SymlinkEntry> dedupedRestoreEntries(const Host& host, const std::vector<AppEntry>& entries,
                                                const Cancellation& cancellation = {});

/// Asks whether they shall come back, and tells which of them no move has left, and whose data stays. Blocks for a look
/// at the drives, the manifest and the data.
Dialog confirmRestore(const Host& host, const std::vector<SymlinkEntry>& links);

/// What came of a restore of several items.
struct Outcome {
    /// How many were begun.
    std::int64_t total = 0;
    /// "{name}: {description}", one for each item that did not come back.
    std::vector<std::string> failures;

    bool operator==(const Outcome&) const = default;
};

/// The item that is being moved back, by its index; called on the calling thread.
using ItemCallback = std::function<void(std::size_t index)>;
/// The same with its progress; from a background thread.
using ItemProgressCallback = std::function<void(std::size_t index, const ByteProgress& progress)>;

/// Moves each back in order; a failure does not stop the rest. Once it is cancelled, the item that is under way is
/// brought to its end, and no other one is begun. Blocks; any thread; never fails.
Outcome restoreAll(const Host& host, const std::vector<SymlinkEntry>& links, const ItemCallback& begins,
                   const ItemProgressCallback& progress, const Cancellation& stopAfterItem = {});

/// The sentence for the user at the end.
MoveRun::Summary summary(const Outcome& outcome);

}  // namespace tarvik::AppRestore
