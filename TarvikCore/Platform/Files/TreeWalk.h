#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/Files.h"

#include <memory>
#include <string>
#include <string_view>
#include <sys/stat.h>

namespace tarvik {

/// Walks the entries of a folder tree through directory handles: each folder before its contents, links not followed,
/// other volumes entered. No recursion, so a tree may be deeper than any path can say; no allocation per file.
///
///     TreeWalk walk(folder, {});
///     while (walk.next()) use(walk.relativePath(), walk.type());
///
/// One walk belongs to one thread. The tree may change meanwhile: what has gone by the time it is reached shows up as
/// an unreadable entry, never as a crash.
class TreeWalk {
public:
    enum class Order {
        listing,  ///< names in byte order: the same on every run and every file system
        any,      ///< as the system lists them: for sums, where order does not matter
        disk,     ///< by the number of their entry on the disk: for changes, which a disk takes best in this order
    };
    struct Options {
        Order order = Order::listing;
        /// Leaves out names that begin with "." (on a Mac also what carries the hidden flag), at every depth.
        bool skipsHidden = false;
        /// Gives each folder a second time, as `Event::leave`, after its contents.
        bool givesLeave = false;
    };
    enum class Event {
        item,        ///< an entry; for a folder, before its contents
        leave,       ///< a folder, after its contents
        unreadable,  ///< the folder given last as `item` could not be listed: see `errorNumber()`
    };

    /// Opens `root`, which must be a folder and no link. When that fails, `rootError()` tells, and the walk is empty.
    TreeWalk(const fs::path& root, Options options);
    ~TreeWalk();
    TreeWalk(TreeWalk&&) noexcept;
    TreeWalk& operator=(TreeWalk&&) noexcept;

    /// errno of opening the root, 0 when it went well.
    int rootError() const;

    /// Goes to the next event. False at the end.
    bool next();
    /// After a folder's `item`: its contents are passed over.
    void skipContents();

    Event event() const;
    /// The entry's own name, valid until the next call of `next`.
    const char* name() const;
    /// The path below the root, without a leading slash; valid until the next call of `next`.
    const std::string& relativePath() const;
    /// Depth below the root: 0 for the root's own entries.
    int depth() const;
    /// A handle of the folder that holds the entry, valid until the next call of `next`.
    int folderHandle() const;
    /// The entry's type; from the listing where that told it, else by a status call.
    Files::ItemType type();
    /// The entry's status, links not followed, read once and kept until `next`. Null when it cannot be read; errno
    /// tells.
    const struct stat* status();
    /// errno of an `unreadable` event.
    int errorNumber() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace tarvik
