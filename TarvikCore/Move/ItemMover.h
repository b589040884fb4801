#pragma once

#include "Platform/Basics/Failure.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <cstdint>
#include <functional>

/// Moves an item to another place, on the same volume or on another one, without ever leaving it in no place.
namespace tarvik::ItemMover {

/// Both in bytes; from a background thread while a copy runs, and once from the calling thread at its end. Never called
/// within one volume. May be empty.
using ProgressCallback = std::function<void(std::int64_t copied, std::int64_t total)>;

/// What stands where the item is to go.
enum class Goal {
    free,      ///< nothing: whatever turns up there is never replaced
    link,      ///< a symbolic link, which the item replaces in one step where the file system can do that
    launcher,  ///< a generated launcher, which the item replaces in the same way
};

/// A move that failed when the item had come to its place: it stands whole at `to`, and the description says what could
/// not be removed. Its domain is "ItemMover".
class Arrived : public Failure {
public:
    using Failure::Failure;
};

/// Renames where that is possible. To another volume the item is copied under a hidden name beside `to`, checked entry
/// by entry, flushed to the drive, put in its place, and only then removed at `from`. Blocks; any thread.
/// @throws FileError, Failure or MoverError. The item then stands whole at `from`, and at `to` is what was there
/// before. Only with an Arrived the item stands whole at `to`.
void move(const Host& host, const fs::path& from, const fs::path& to, Goal goal, const ProgressCallback& progress = {});

}  // namespace tarvik::ItemMover
