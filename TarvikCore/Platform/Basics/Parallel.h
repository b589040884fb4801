#pragma once

#include <cstddef>
#include <functional>

namespace tarvik {

/// Calls `body` once for each index below `count`, in their order but up to `threads` of them at a time, fewer where
/// the system gives no more threads. Blocks until all have ended. When one throws, those that have not begun are left
/// out, and the first failure is thrown on.
void inParallel(std::size_t count, std::size_t threads, const std::function<void(std::size_t)>& body);

/// How many threads can work at a time; at least 1.
std::size_t processorCount();

}  // namespace tarvik
