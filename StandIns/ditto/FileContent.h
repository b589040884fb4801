#pragma once

#include "ditto/Folder.h"

#include <atomic>
#include <memory>
#include <sys/stat.h>

namespace tarvik::ditto {

/// Ends the work of a thread because another one cannot go on.
struct Stopped {};

/// Copies the bytes of one file after the other. Belongs to one thread.
class FileContent {
public:
    /// When `stop` becomes true, a copy that runs ends with `Stopped`.
    explicit FileContent(const std::atomic<bool>& stop);

    /// Copies what the open file `source` held when `status` was read into the new, empty file `destination`: shared
    /// with it where the file system can, and holes as holes. A file that shrinks meanwhile gives what is left.
    /// @throws ItemError; Stopped
    void copy(int source, int destination, const struct stat& status, const Item& item);

private:
    bool clone(int source, int destination, const struct stat& status, const Item& item);
    void copyData(int source, int destination, off_t size, const Item& item);
    bool copyRange(int source, int destination, off_t offset, off_t length, const Item& item);
    off_t copyInKernel(int source, int destination, off_t offset, off_t length);

    const std::atomic<bool>& m_stop;
    std::unique_ptr<char[]> m_buffer;
    /// The pair of file systems that was found last to share nothing.
    dev_t m_apartSource = 0;
    dev_t m_apartDestination = 0;
};

}  // namespace tarvik::ditto
