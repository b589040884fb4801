#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Machine/Host.h"
#include "Platform/Storage/VolumeFlush.h"

#include <ctime>
#include <memory>
#include <optional>
#include <sys/stat.h>

/// Finds out whether something was written in a tree while it was copied. A copy of a file that changed under the
/// copier's hands can have the right size and the wrong bytes, so a proof by size is not enough.
namespace tarvik::ChangeWatch {

/// A moment before the first byte is read, and what stood at the root then. It is held open, so that nothing else gets
/// its number.
struct Mark {
    timespec time{};
    std::shared_ptr<const FileDescriptor> root;
};

/// The beginning of a watch over the tree at `root`. It marks the present moment and waits until the file systems'
/// clocks have passed it, which takes some milliseconds: what is written from then on bears a later time. A write
/// through a memory mapping does so only when it is the first one since the page went to the disk; so the volume is
/// flushed, in the background, while the caller does something else. A memory file system has no disk: there such a
/// write to a page that was written to before is never seen.
class Beginning {
public:
    explicit Beginning(const fs::path& root);
    /// Waits until the volume is flushed; nothing may be copied before. Call once. @throws FileError.
    Mark mark();

private:
    fs::path m_root;
    Mark m_mark;
    VolumeFlush m_flush;
};

/// The same where there is nothing to do meanwhile.
Mark mark(const fs::path& root);
/// The same without the flush, for who asks for no more than `hasChanged`: only a change of bytes through a memory
/// mapping stays unseen. Never fails.
Mark markUnflushed(const fs::path& root);

/// Whether the item with this status, links not followed, was written to, made, renamed or replaced since the mark, as
/// far as its own times tell. Pure.
bool hasChanged(const struct stat& status, const Mark& mark);

/// The path below `root` of the first item that was written to, made or replaced since the mark, empty for the root
/// itself; nothing when all is as it was. Something else at the root counts, however old it is. It goes by the time of
/// the last status change, which no program can set back; the root itself, which may have been renamed since, by the
/// time of its content. A time of a whole second is taken for one of a volume that keeps no finer ones: it counts when
/// it is less than two seconds before the mark's. @throws FileError when something cannot be read: nothing can be told
/// then.
std::optional<fs::path> changedBelow(const Host& host, const fs::path& root, const Mark& mark);

/// The same without the root itself, whose time may tell of another time altogether: that of a bundle that was unpacked
/// is whatever its maker's clock said.
std::optional<fs::path> changedInside(const Host& host, const fs::path& root, const Mark& mark);

}  // namespace tarvik::ChangeWatch
