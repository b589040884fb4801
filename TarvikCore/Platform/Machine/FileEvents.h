#pragma once

#include "Platform/Basics/Path.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tarvik {

/// Tells as it happens what comes, changes and goes in folders and all that is below them. Immutable; safe to share
/// between threads.
class FileEvents {
public:
    /// Who is told. Both are called one at a time, by a background thread, and by the one that calls `begin` before
    /// that returns. What they throw is dropped. They must not end the stream.
    struct Listener {
        /// Paths at which something happened: an item was made, changed, renamed or removed there. They are absolute;
        /// several events at one path may be told as one, in any order. Hidden items are told of as any others. They
        /// come in batches, about every quarter of a second while something happens, the first at once.
        std::function<void(const std::vector<std::string>& paths)> happened;
        /// What may be missing among the paths and why, one sentence for the user. Each is told once.
        std::function<void(const std::string& sentence)> missed;
    };
    /// Ends with its life; once that is over, nobody is called any more. What the system has not told of by then is
    /// not waited for.
    class Stream {
    public:
        Stream() = default;
        virtual ~Stream() = default;
        Stream(const Stream&) = delete;
        Stream& operator=(const Stream&) = delete;
    };

    virtual ~FileEvents() = default;

    /// Blocks until what happens next is seen. A root need not be there: it is told of when it comes, with all that is
    /// in it. What happens inside a folder that is made, or moved in, is seen as soon as the system tells of the folder
    /// itself; what it holds by then is told of too, but on a Mac not of a folder that was moved in whole. Never
    /// throws. Null when nothing can be watched; the listener is told why.
    virtual std::unique_ptr<Stream> begin(const std::vector<fs::path>& roots, Listener listener) const = 0;
};

/// The one of this system. It knows paths and no machine, so one in a folder has the same.
std::shared_ptr<const FileEvents> makeSystemFileEvents();

}  // namespace tarvik
