#pragma once

#include "ditto/Folder.h"
#include "ditto/ItemError.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarvik::ditto {

/// Takes away what stands where `item` is to be made: in a new folder another item of the source, whose name the
/// destination takes for the same. @returns 0, or the errno of why it has to stay.
inline int removeFormer(const Item& item) {
    struct stat former {};
    const int folder = item.parent.destination.get();
    if (::fstatat(folder, item.destinationName, &former, AT_SYMLINK_NOFOLLOW) != 0) return errno == ENOENT ? 0 : errno;
    if (S_ISDIR(former.st_mode)) return EISDIR;
    return ::unlinkat(folder, item.destinationName, 0) == 0 || errno == ENOENT ? 0 : errno;
}

/// Makes an item by `make`, a system call that does not make it where something stands. An older item is replaced,
/// never written through. @returns what `make` returned.
/// @throws ItemError
template <typename Make>
int makeFresh(const Item& item, const Make& make) {
    for (;;) {
        const int made = make();
        if (made >= 0) return made;
        if (errno != EEXIST) throw ItemError(destinationPath(item), errno);
        if (const int error = removeFormer(item)) throw ItemError(destinationPath(item), error);
    }
}

}  // namespace tarvik::ditto
