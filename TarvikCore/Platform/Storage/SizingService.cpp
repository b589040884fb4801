#include "Platform/Storage/SizingService.h"

#include "Platform/Files/TreeWalk.h"

#include <sys/stat.h>
#include <unordered_set>

namespace tarvik::SizingService {

namespace {

std::int64_t blockBytes(const struct stat& status) {
    return static_cast<std::int64_t>(status.st_blocks) * 512;
}

std::int64_t sizeOfTree(const fs::path& root, const Cancellation& cancellation) {
    std::unordered_set<DirID, DirIDHash> visited;
    std::int64_t total = 0;
    TreeWalk walk(root, {.order = TreeWalk::Order::any, .skipsHidden = true});
    while (walk.next()) {
        if (walk.event() != TreeWalk::Event::item || walk.type() == Files::ItemType::symbolicLink) continue;
        const struct stat* status = walk.status();
        if (!status) continue;
        if (!S_ISDIR(status->st_mode)) {
            total += blockBytes(*status);
            continue;
        }
        if (cancellation.isCancelled()) break;
        const DirID folder{static_cast<std::int32_t>(status->st_dev), static_cast<std::uint64_t>(status->st_ino)};
        if (!visited.insert(folder).second) walk.skipContents();
    }
    return total;
}

}  // namespace

std::int64_t size(const Host&, const fs::path& path, const Cancellation& cancellation) {
    const auto resolved = Files::resolved(path);
    struct stat status {};
    if (!resolved || ::lstat(resolved->c_str(), &status) != 0) return 0;
    if (S_ISREG(status.st_mode)) return blockBytes(status);
    if (!S_ISDIR(status.st_mode) || cancellation.isCancelled()) return 0;
    return sizeOfTree(*resolved, cancellation);
}

}  // namespace tarvik::SizingService
