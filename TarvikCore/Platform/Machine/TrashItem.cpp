#include "Platform/Machine/TrashItem.h"

#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"

#include <cerrno>
#include <string>
#include <string_view>
#include <sys/stat.h>

namespace tarvik::TrashItem {

fs::path place(const fs::path& item) {
    const fs::path standardized = Files::standardized(item);
    const auto parent = Files::resolved(standardized.parent_path());
    if (!parent || !Files::itemExists(standardized)) throw FileError("move to the Trash", item, ENOENT);
    const std::string& text = standardized.native();
    const std::string_view name = std::string_view(text).substr(text.rfind('/') + 1);
    if (name.empty()) return *parent;
    // Put together as text: that takes a fraction of the time.
    return parent->native() + (parent->has_relative_path() ? "/" : "") + std::string(name);
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
