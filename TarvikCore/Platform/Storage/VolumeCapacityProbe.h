#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <cstdint>

/// What may still be written where.
namespace tarvik::VolumeCapacityProbe {

/// Bytes that an ordinary file may still take on the volume that holds `path`; 0 when that cannot be told, which
/// callers take as unknown. Blocks while the system answers; any thread.
std::int64_t freeBytes(const Host& host, const fs::path& path);

}  // namespace tarvik::VolumeCapacityProbe
