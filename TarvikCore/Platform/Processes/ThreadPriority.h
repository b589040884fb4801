#pragma once

/// How a thread stands beside others that want the processors.
namespace tarvik::ThreadPriority {

/// Puts the calling thread, and the programs that it starts, behind everything that somebody waits for; for good.
void lower() noexcept;

}  // namespace tarvik::ThreadPriority
