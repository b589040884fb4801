#include "Platform/Storage/SizeCalculator.h"

#include "Platform/Files/SystemCalls.h"
#include "Platform/Files/TreeWalk.h"
#include "Platform/Text/Text.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace tarvik::SizeCalculator {

std::int64_t size(const Host&, const fs::path& path, const Cancellation& cancellation) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) return 0;
    if (!S_ISDIR(status.st_mode)) return SystemCalls::allocatedSize(AT_FDCWD, path.c_str(), status);

    std::int64_t total = 0;
    TreeWalk walk(path, {.order = TreeWalk::Order::any, .skipsHidden = true});
    while (!cancellation.isCancelled() && walk.next()) {
        if (walk.event() != TreeWalk::Event::item || walk.type() != Files::ItemType::regular) continue;
        if (const struct stat* file = walk.status())
            total += SystemCalls::allocatedSize(walk.folderHandle(), walk.name(), *file);
    }
    return total;
}

std::string format(std::int64_t bytes) {
    return Text::byteCount(bytes);
}

}  // namespace tarvik::SizeCalculator
