#include "Platform/Files/ItemIdentity.h"

#include <sys/stat.h>

namespace tarvik {

namespace {

std::int64_t nanosecondsOf(const timespec& time) {
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

}  // namespace

std::optional<ItemIdentity> ItemIdentity::of(const fs::path& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) return std::nullopt;
    ItemIdentity identity{.type = Files::typeOfMode(status.st_mode),
                          .inode = static_cast<std::uint64_t>(status.st_ino),
                          .size = static_cast<std::int64_t>(status.st_size),
                          .changed = nanosecondsOf(status.st_mtimespec)};
    // stat(2): a file system that keeps no such time sets it to 0 or -1; some give the time of the last change of
    // status, which a rename moves on.
    const std::int64_t born = nanosecondsOf(status.st_birthtimespec);
    if (born > 0 && born != nanosecondsOf(status.st_ctimespec)) identity.born = born;
    return identity;
}

}  // namespace tarvik
