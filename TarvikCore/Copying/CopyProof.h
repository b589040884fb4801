#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <optional>
#include <string>

/// Everything that must be true of a copy before its original may go: it holds what the original holds, it has reached
/// the drive, and the original has not changed since.
namespace tarvik::CopyProof {

/// Whether the entries are counted as well, which stands against a copy without the original's sockets.
enum class Count { yes, no };

/// The first reason against the copy, in words, or nothing. Flushes the copy's volume while the entries are compared,
/// from a thread of its own that has ended when this returns: the drive and the processor then work at the same time.
/// Blocks; any thread.
std::optional<std::string> reasonAgainst(const Host& host, const fs::path& original, const fs::path& copy, Count count);

}  // namespace tarvik::CopyProof
