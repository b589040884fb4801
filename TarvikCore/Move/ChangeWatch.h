#pragma once

#include "Platform/Host.h"
#include "Platform/Path.h"

#include <ctime>
#include <optional>

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

/// The path below `root` of the first item that was written to, made or replaced since the mark, empty for the root
/// itself; nothing when all is as it was. It goes by the time of the last status change, which no program can set back;
/// the root itself, which may have been renamed since, by the time of its content. On a volume that keeps whole seconds
/// only, a change within the second of the mark counts. @throws FileError when something cannot be read: nothing can be
/// told then.
std::optional<fs::path> changedBelow(const Host& host, const fs::path& root, const Mark& mark);

}  // namespace tarvik::ChangeWatch
