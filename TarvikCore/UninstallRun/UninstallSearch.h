#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/ItemIdentity.h"
#include "Platform/Machine/Host.h"

#include <chrono>
#include <map>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace tarvik {

/// Finds what an uninstall has taken away. Each Trash folder is read once, when something is first looked for in it.
/// Belongs to one thread; blocks; never fails.
class UninstallSearch {
public:
    /// `host` must outlive it.
    explicit UninstallSearch(const Host& host) : m_host(host) {}

    /// Where the item of that identity, which stood at `place`, lies in the Trash: under whatever name by its number,
    /// and without that number only under a name that a Trash gives it.
    std::optional<fs::path> inTrash(const fs::path& place, const ItemIdentity& identity);
    /// Whether a Trash gives an item called `own` that name: its own, or where that is taken one with a number or the
    /// time before the extension.
    static bool isTrashName(std::string_view name, std::string_view own);
    /// Where the item that stood at `place` lies in the folder `.TarvikTrash` beside it: the one of that identity, or
    /// without one the last that was put there for an uninstall, by `latest`.
    static std::optional<fs::path> inStash(const fs::path& place, const std::optional<ItemIdentity>& identity,
                                           std::chrono::system_clock::time_point latest);
    static fs::path stashBeside(const fs::path& place);

private:
    using Folder = std::vector<std::pair<fs::path, ItemIdentity>>;

    const Folder& read(const fs::path& folder);

    const Host& m_host;
    std::map<fs::path, Folder> m_folders;
};

}  // namespace tarvik
