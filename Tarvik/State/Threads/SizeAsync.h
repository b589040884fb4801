#pragma once

#include "Platform/Basics/Cancellation.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"
#include "State/Threads/Background.h"

#include <cstdint>

namespace tarvik {

/// `SizingService::size` in the background: allocated bytes. A cancelled measurement gives what it has counted so far.
QCoro::Task<std::int64_t> sizeAsync(Host host, fs::path path, Priority priority, Cancellation cancellation = {});

}  // namespace tarvik
