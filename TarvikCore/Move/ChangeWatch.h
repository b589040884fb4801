#pragma once

#include "Platform/Host.h"
#include "Platform/Path.h"

#include <ctime>
#include <optional>
#include <string>

/// Finds out whether something was written in a tree while it was copied. A copy of a file that changed under the
/// copier's hands can have the right size and the wrong bytes, so a proof by size is not enough.
namespace tarvik::ChangeWatch {

/// A moment before the first byte is read.
struct Mark {
    timespec time{};
};

/// Marks the present moment and waits until the file systems' clocks have passed it, which takes some milliseconds:
/// what is written from then on bears a later time.
Mark mark();

/// The path, below `root` and with its name in front, of the first item that was written to, made or replaced since the
/// mark; nothing when all is as it was. It goes by the time of the last status change, which no program can set back.
std::optional<std::string> changedItem(const Host& host, const fs::path& root, const Mark& mark);

}  // namespace tarvik::ChangeWatch
