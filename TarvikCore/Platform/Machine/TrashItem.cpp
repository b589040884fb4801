#include "Platform/Machine/TrashItem.h"

#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/SystemCalls.h"

#include <cerrno>
#include <cstddef>
#include <string>
#include <string_view>
#include <sys/stat.h>

namespace tarvik::TrashItem {

fs::path place(const fs::path& item) {
    fs::path standardized = Files::standardized(item);
    if (!Files::itemExists(standardized)) throw FileError("move to the Trash", item, ENOENT);
    // Texts are put together in a fraction of the time that paths take.
    const std::string_view text = standardized.native();
    const std::size_t slash = text.rfind('/');
    const fs::path folder = text.substr(0, slash + 1);
    if (SystemCalls::leadsThroughNoLink(folder)) return standardized;
    const auto real = Files::resolved(folder);
    if (!real) throw FileError("move to the Trash", item, ENOENT);
    const std::string_view name = text.substr(slash + 1);
    return name.empty() ? *real : fs::path(real->native() + (real->has_relative_path() ? "/" : "") + std::string(name));
}

void refuseTrashItself(const fs::path& place, const fs::path& trashFolder) {
    if (Files::isAtOrBelow(place, trashFolder) || Files::isAtOrBelow(trashFolder, place))
        throw FileError("move to the Trash", place, EPERM);
}

void makePrivateFolder(const fs::path& folder) {
    if (Files::isFolder(folder)) return;
    if (::mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST) throw FileError("create the folder", folder, errno);
    if (!Files::isFolder(folder)) throw FileError("use as the Trash", folder, ENOTDIR);
}

}  // namespace tarvik::TrashItem
