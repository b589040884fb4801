#include "Platform/Machine/TrashItem.h"

#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"

#include <cerrno>
#include <sys/stat.h>

namespace tarvik::TrashItem {

fs::path place(const fs::path& item) {
    const fs::path standardized = Files::standardized(item);
    const auto parent = Files::resolved(standardized.parent_path());
    if (!parent || !Files::itemExists(standardized)) throw FileError("move to the Trash", item, ENOENT);
    return standardized.has_filename() ? *parent / standardized.filename() : *parent;
}

void refuseTrashItself(const fs::path& place, const fs::path& trashFolder) {
    if (Files::isAtOrBelow(place, trashFolder) || Files::isAtOrBelow(trashFolder, place))
        throw FileError("move to the Trash", place, EPERM);
}

void makePrivateFolder(const fs::path& folder) {
    if (::mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST) throw FileError("create the folder", folder, errno);
    if (!Files::isFolder(folder)) throw FileError("use as the Trash", folder, ENOTDIR);
}

}  // namespace tarvik::TrashItem
