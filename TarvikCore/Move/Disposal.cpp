#include "Move/Disposal.h"

#include "Platform/Failure.h"
#include "Platform/Files.h"
#include "Platform/TrashCan.h"

#include <climits>

#include <cstddef>

namespace tarvik::Disposal {

namespace {

/// `name` with `suffix`, cut so that the whole is a name that file systems take.
std::string suffixedName(std::string name, const std::string& suffix) {
    const std::size_t room = NAME_MAX - suffix.size();
    if (name.size() > room) {
        std::size_t end = room;
        while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0U) == 0x80U) --end;  // A whole UTF-8 sequence.
        name.resize(end);
    }
    return name + suffix;
}

bool goesToTrash(const Host& host, const fs::path& item) noexcept {
    bool gone = false;
    ignoringFailure([&] {
        host.trash->moveToTrash(item);
        gone = true;
    });
    return gone;
}

}  // namespace

void dispose(const Host& host, const fs::path& item, const std::string& suffix) noexcept {
    if (goesToTrash(host, item)) return;
    ignoringFailure([&] {
        const fs::path folder = item.parent_path() / ".TarvikTrash";
        Files::createFolder(folder);
        Files::rename(item, folder / suffixedName(item.filename(), suffix));
    });
}

}  // namespace tarvik::Disposal
