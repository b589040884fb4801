#pragma once

#include "Platform/Cancellation.h"
#include "Platform/Host.h"
#include "Platform/Path.h"
#include "State/Background.h"

#include <cstdint>

namespace tarvik {

/// `SizingService::size` in the background: allocated bytes. A cancelled measurement gives what it has counted so far.
QCoro::Task<std::int64_t> sizeAsync(Host host, fs::path path, Priority priority, Cancellation cancellation = {});

}  // namespace tarvik
