#pragma once

#include "Platform/Host.h"
#include "Platform/Path.h"

#include <cstdint>
#include <functional>

/// Moves an item to another place, on the same volume or on another one, without ever leaving it in no place.
namespace tarvik::ItemMover {

/// Both in bytes; from a background thread while a copy runs. Never called within one volume.
using ProgressCallback = std::function<void(std::int64_t copied, std::int64_t total)>;

/// Renames where that is possible. To another volume the item is copied under a temporary name beside `to`, checked
/// entry by entry, flushed to the drive, renamed, and only then removed at `from`. Never replaces what stands at `to`.
/// Blocks; any thread. `progress` may be empty. `makeWay`, which may be empty too, is called once, right before the
/// item takes its place, and removes what stands at `to` until then.
/// @throws FileError, Failure or MoverError. The item then stands whole at `from`, except when its removal there
/// failed, and then it stands whole at `to`.
void move(const Host& host, const fs::path& from, const fs::path& to, const ProgressCallback& progress = {},
          const std::function<void()>& makeWay = {});

}  // namespace tarvik::ItemMover
