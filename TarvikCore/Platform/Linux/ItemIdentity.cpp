#include "Platform/Files/ItemIdentity.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace tarvik {

namespace {

std::int64_t nanosecondsOf(const statx_timestamp& time) {
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

}  // namespace

std::optional<ItemIdentity> ItemIdentity::of(const fs::path& path) {
    struct statx status {};
    constexpr unsigned wanted = STATX_TYPE | STATX_INO | STATX_SIZE | STATX_MTIME | STATX_BTIME;
    if (::statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, wanted, &status) != 0)
        return std::nullopt;
    ItemIdentity identity{.type = Files::typeOfMode(status.stx_mode),
                          .inode = status.stx_ino,
                          .size = static_cast<std::int64_t>(status.stx_size),
                          .changed = nanosecondsOf(status.stx_mtime)};
    if ((status.stx_mask & STATX_BTIME) != 0) identity.born = nanosecondsOf(status.stx_btime);
    return identity;
}

}  // namespace tarvik
