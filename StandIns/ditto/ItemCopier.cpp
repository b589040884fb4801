#include "ditto/ItemCopier.h"

#include "ditto/Attributes.h"
#include "ditto/FreshItem.h"
#include "ditto/ItemError.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace tarvik::ditto {

namespace {

ItemError changedMeanwhile(const Item& item) {
    return {sourcePath(item), EAGAIN, "It was replaced while it was being copied"};
}

[[noreturn]] void failToReadItem(const Item& item, int error) {
    failToRead([&] { return sourcePath(item); }, error);
}

int createFile(const Item& item) {
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    return makeFresh(
        item, [&] { return ::openat(item.parent.destination.get(), item.destinationName, flags, S_IRUSR | S_IWUSR); });
}

/// Some file systems tell only here that something could not be written.
void closeWritten(FileDescriptor& file, const Item& item) {
    if (::close(file.release()) != 0 && errno != EINTR) throw ItemError(destinationPath(item), errno);
}

std::string linkText(const Item& item, const struct stat& status) {
    std::string text(static_cast<std::size_t>(std::max<off_t>(status.st_size, 64)) + 1, '\0');
    for (;;) {
        const ssize_t length = ::readlinkat(item.parent.source.get(), item.sourceName, text.data(), text.size());
        if (length < 0 && errno == EINVAL) throw changedMeanwhile(item);
        if (length < 0) failToReadItem(item, errno);
        if (static_cast<std::size_t>(length) < text.size()) {
            text.resize(static_cast<std::size_t>(length));
            return text;
        }
        text.resize(text.size() * 2);
    }
}

}  // namespace

void ItemCopier::copy(const Item& item, unsigned char type) {
    if (type == DT_REG) {
        copyFile(item);
    } else {
        copyOther(item);
    }
}

void ItemCopier::copyFile(const Item& item) {
    // A pipe that took the file's place meanwhile must not make the opening wait.
    FileDescriptor source(openForReading(item.parent.source.get(), item.sourceName,
                                         O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    if (!source || ::fstat(source.get(), &status) != 0) failToReadItem(item, errno);
    if (!S_ISREG(status.st_mode)) throw changedMeanwhile(item);

    FileDescriptor destination;
    const auto create = [&] { destination = FileDescriptor(createFile(item)); };
    if (status.st_nlink > 1) {
        if (m_links.linkOrMake(item, status, create)) return;
    } else {
        create();
    }
    m_content.copy(source.get(), destination.get(), status, item);
    Attributes::copy(source.get(), destination.get(), status, item);
    closeWritten(destination, item);
}

void ItemCopier::copyOther(const Item& item) {
    struct stat status {};
    if (::fstatat(item.parent.source.get(), item.sourceName, &status, AT_SYMLINK_NOFOLLOW) != 0)
        failToReadItem(item, errno);

    const auto make = [&] { makeOther(item, status); };
    if (status.st_nlink > 1) {
        if (m_links.linkOrMake(item, status, make)) return;
    } else {
        make();
    }
    Attributes::copyByName(item, status);
}

void ItemCopier::makeOther(const Item& item, const struct stat& status) {
    const int folder = item.parent.destination.get();
    const mode_t kind = status.st_mode & S_IFMT;
    if (kind == S_IFLNK) {
        const std::string text = linkText(item, status);
        makeFresh(item, [&] { return ::symlinkat(text.c_str(), folder, item.destinationName); });
    } else if (kind == S_IFCHR || kind == S_IFBLK) {
        makeFresh(item,
                  [&] { return ::mknodat(folder, item.destinationName, kind | S_IRUSR | S_IWUSR, status.st_rdev); });
    } else {
        throw changedMeanwhile(item);
    }
}

void leave(const OpenFolder& folder) {
    if (--folder.folder->unfinished == 0 && folder.folder->isNew) Attributes::copy(folder);
}

}  // namespace tarvik::ditto
