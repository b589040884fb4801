#include "Backups/BackupNames.h"

#include "Copying/FileStash.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/TreeWalk.h"
#include "Platform/Text/Text.h"

#include <algorithm>
#include <vector>

namespace tarvik::BackupNames {

namespace {

/// The items below `root` whose names change, the longest path first: children before their parents.
std::vector<fs::path> itemsToRename(const fs::path& root) {
    std::vector<fs::path> items;
    TreeWalk walk(root, {});
    while (walk.next())
        if (walk.event() == TreeWalk::Event::item && visible(walk.name()) != walk.name())
            items.push_back(root / walk.relativePath());
    std::stable_sort(items.begin(), items.end(), [](const fs::path& one, const fs::path& other) {
        return one.native().size() > other.native().size();
    });
    return items;
}

}  // namespace

std::string visible(std::string_view name) {
    return Text::replacing(Text::replacing(name, "Tarvik", "App"), "tarvik", "app");
}

std::string ofSource(const fs::path& source) {
    const std::string name = source.filename();
    const std::string lower = Text::lowerCased(name);
    if (lower.ends_with(".app")) return "InstalledApp.app";
    if (lower == "app") return "SourceApp";
    return visible(name);
}

void sanitizeVisibleNames(const Host& host, const fs::path& root) {
    for (const auto& item : itemsToRename(root)) {
        if (!Files::itemExists(item)) continue;  // It lay in something that has been set aside.
        const fs::path renamed = item.parent_path() / visible(item.filename().native());
        FileStash::moveAside(host, renamed, "backup-name-conflict");
        Files::rename(item, renamed);
    }
}

}  // namespace tarvik::BackupNames
