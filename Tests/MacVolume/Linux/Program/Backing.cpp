#include "Program/Backing.h"

#include "Program/Names.h"

#include <fmt/format.h>

#include <dirent.h>
#include <fcntl.h>
#include <memory>

namespace tarvik::macvolume {

std::string Backing::pathOf(const std::string& place) const {
    return fmt::format("/proc/self/fd/{}/{}", handle(), place);
}

std::optional<struct stat> Backing::status(const std::string& place) const {
    struct stat status {};
    if (::fstatat(handle(), place.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return std::nullopt;
    return status;
}

std::optional<std::string> Backing::sameName(const std::string& folder, std::string_view name) const {
    const std::string wanted = Names::folded(name);
    for (const Entry& entry : entries(folder))
        if (Names::folded(entry.name) == wanted) return entry.name;
    return std::nullopt;
}

std::vector<std::string> Backing::foldersBelow(const std::string& folder) const {
    std::vector<std::string> folders;
    std::vector<std::string> waiting = {folder};
    while (!waiting.empty()) {
        const std::string next = std::move(waiting.back());
        waiting.pop_back();
        for (const Entry& entry : entries(next)) {
            if (entry.type != DT_DIR) continue;
            folders.push_back(joined(next, entry.name));
            waiting.push_back(folders.back());
        }
    }
    return folders;
}

std::vector<Backing::Entry> Backing::entries(const std::string& folder) const {
    std::vector<Entry> entries;
    FileDescriptor opened(::openat(handle(), folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(opened ? ::fdopendir(opened.get()) : nullptr, ::closedir);
    if (!listing) return entries;
    static_cast<void>(opened.release());  // The listing closes it.
    while (const dirent* entry = ::readdir(listing.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") entries.push_back({std::string(name), entry->d_ino, entry->d_type});
    }
    return entries;
}

std::string Backing::folderOf(const std::string& place) {
    const auto slash = place.rfind('/');
    return slash == std::string::npos ? "." : place.substr(0, slash);
}

std::string Backing::nameOf(const std::string& place) {
    const auto slash = place.rfind('/');
    return slash == std::string::npos ? place : place.substr(slash + 1);
}

std::string Backing::joined(const std::string& folder, std::string_view name) {
    return folder == "." ? std::string(name) : fmt::format("{}/{}", folder, name);
}

}  // namespace tarvik::macvolume
