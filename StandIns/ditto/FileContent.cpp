#include "ditto/FileContent.h"

#include "ditto/ItemError.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tarvik::ditto {

namespace {

constexpr off_t bufferSize = off_t{256} * 1024;
/// What the kernel copies in one call; between calls the copy can be stopped.
constexpr off_t kernelStep = off_t{64} * 1024 * 1024;

bool isSparse(const struct stat& status) {
    return status.st_blocks * 512 < status.st_size;
}

}  // namespace

FileContent::FileContent(const std::atomic<bool>& stop)
    : m_stop(stop), m_buffer(std::make_unique_for_overwrite<char[]>(bufferSize)) {}

void FileContent::copy(int source, int destination, const struct stat& status, const Item& item) {
    if (status.st_size > 0 && clone(source, destination, status, item)) return;
    if (isSparse(status)) {
        copyData(source, destination, status.st_size, item);
    } else {
        // Files that the system makes up while they are read have no size: they are read to their end.
        const bool sizeIsUnknown = status.st_size == 0;
        const off_t length = sizeIsUnknown ? bufferSize : status.st_size;
        for (off_t offset = 0; copyRange(source, destination, offset, length, item) && sizeIsUnknown;) offset += length;
    }
}

bool FileContent::clone(int source, int destination, const struct stat& status, const Item& item) {
    const dev_t destinationDevice = item.parent.folder->destinationDevice;
    if (status.st_dev == m_apartSource && destinationDevice == m_apartDestination) return false;
    if (::ioctl(destination, FICLONE, source) == 0) return true;
    // Other failures may be this file's own: the next one is tried again.
    if (errno == EXDEV || errno == EOPNOTSUPP || errno == ENOTTY || errno == ENOSYS) {
        m_apartSource = status.st_dev;
        m_apartDestination = destinationDevice;
    }
    return false;
}

/// Copies what is no hole.
void FileContent::copyData(int source, int destination, off_t size, const Item& item) {
    off_t end = 0;
    for (;;) {
        const off_t data = ::lseek(source, end, SEEK_DATA);
        if (data < 0 && errno == ENXIO) break;
        if (data < 0) {  // The file system does not tell its holes.
            copyRange(source, destination, end, size - end, item);
            return;
        }
        if (data >= size) break;
        end = ::lseek(source, data, SEEK_HOLE);
        if (end < 0 && errno == ENXIO) break;  // The file has become shorter meanwhile.
        if (end < 0) throw ItemError(sourcePath(item), errno);
        end = std::min(end, size);
        if (!copyRange(source, destination, data, end - data, item)) return;
    }
    struct stat present {};
    if (::fstat(source, &present) != 0) throw ItemError(sourcePath(item), errno);
    // A hole at the end is made by the length alone; what has been cut off meanwhile is no hole.
    if (::ftruncate(destination, std::min(size, present.st_size)) != 0) throw ItemError(destinationPath(item), errno);
}

/// @returns false when the source ended before the range did.
bool FileContent::copyRange(int source, int destination, off_t offset, off_t length, const Item& item) {
    const off_t end = offset + length;
    if (length > bufferSize) offset += copyInKernel(source, destination, offset, length);
    while (offset < end) {
        if (m_stop) throw Stopped{};
        const auto wanted = static_cast<std::size_t>(std::min(end - offset, bufferSize));
        const ssize_t count = ::pread(source, m_buffer.get(), wanted, offset);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throw ItemError(sourcePath(item), errno);
        if (count == 0) return false;
        for (ssize_t done = 0; done < count;) {
            const ssize_t written =
                ::pwrite(destination, m_buffer.get() + done, static_cast<std::size_t>(count - done), offset + done);
            if (written < 0 && errno == EINTR) continue;
            if (written < 0) throw ItemError(destinationPath(item), errno);
            done += written;
        }
        offset += count;
    }
    return true;
}

/// Copies as much as the kernel is willing to. It may stop anywhere, for any reason: the way through the buffer goes on
/// from there, and finds out which side has failed if one has.
/// @returns how many bytes it copied
off_t FileContent::copyInKernel(int source, int destination, off_t offset, off_t length) {
    off_t from = offset;
    off_t into = offset;
    const off_t end = offset + length;
    while (from < end && !m_stop) {
        const auto wanted = static_cast<std::size_t>(std::min(end - from, kernelStep));
        if (::copy_file_range(source, &from, destination, &into, wanted, 0) <= 0) break;
    }
    return from - offset;
}

}  // namespace tarvik::ditto
