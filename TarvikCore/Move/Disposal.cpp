#include "Move/Disposal.h"

#include "Platform/ClashNames.h"
#include "Platform/Failure.h"
#include "Platform/Files.h"
#include "Platform/TrashCan.h"

#include <climits>

namespace tarvik::Disposal {

namespace {

bool goesToTrash(const Host& host, const fs::path& item) noexcept {
    bool gone = false;
    ignoringFailure([&] {
        host.trash->moveToTrash(item);
        gone = true;
    });
    return gone;
}

}  // namespace

bool dispose(const Host& host, const fs::path& item, const std::string& suffix) noexcept {
    if (goesToTrash(host, item)) return true;
    bool gone = false;
    ignoringFailure([&] {
        const fs::path folder = item.parent_path() / ".TarvikTrash";
        Files::createFolder(folder);
        Files::rename(item, folder / ClashNames::suffixed(item.filename().native(), suffix, NAME_MAX));
        gone = true;
    });
    return gone;
}

}  // namespace tarvik::Disposal
