#include "xar/Extraction.h"

#include "Packages/BoundedTree.h"
#include "Packages/PackageFailure.h"
#include "Packages/SafeName.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <unistd.h>

namespace tarvik::xar::Extraction {

namespace {

using namespace packages;
using Type = XarEntry::Type;

struct Item {
    const XarEntry* entry;
    SafeName::Components path;
};

bool isAtOrBelow(const std::string& path, const std::string& name) {
    return path == name || (path.size() > name.size() && path.starts_with(name) && path[name.size()] == '/');
}

bool isNamed(const std::string& path, const std::vector<std::string>& names) {
    return names.empty() ||
           std::any_of(names.begin(), names.end(), [&](const auto& name) { return isAtOrBelow(path, name); });
}

/// All entries with safe paths, whether they are wanted or not: what is hostile in one place is not believed in
/// another.
std::vector<Item> checked(const XarContents& contents) {
    std::vector<Item> items;
    std::map<std::string, Type> types;
    for (const XarEntry& entry : contents.entries) {
        const auto path = SafeName::components(entry.path);
        if (!path || path->empty()) failUnsafe("The archive holds an entry that would lie elsewhere: " + entry.path);
        if (entry.type == Type::other)
            failUnsafe("The archive holds something that is no file, folder or link: " + entry.path);
        SafeName::Components above;
        for (std::size_t index = 0; index + 1 < path->size(); ++index) {
            above.push_back((*path)[index]);
            const auto found = types.find(SafeName::joined(above));
            if (found != types.end() && found->second != Type::folder)
                failUnsafe("The archive would write through an entry that is no folder: " + entry.path);
        }
        types[SafeName::joined(*path)] = entry.type;
        items.push_back({&entry, *path});
    }
    return items;
}

/// The entry that a hard link is one with.
const Item& originalOf(const Item& link, const std::map<std::string, const Item*>& byId) {
    const auto found = byId.find(link.entry->target);
    if (found == byId.end()) failUnsafe("The archive holds a hard link to what is not in it: " + link.entry->path);
    return *found->second;
}

}  // namespace

void extract(const XarArchive& archive, const std::vector<std::string>& names, const fs::path& folder) {
    const auto items = checked(archive.contents());
    BoundedTree tree(folder, BoundedTree::Links::refused);
    std::map<std::string, const Item*> byId;
    std::uint64_t space = tree.availableSpace({});
    for (const Item& item : items) {
        if (item.entry->type == Type::file) byId[item.entry->id] = &item;
        if (!isNamed(item.entry->path, names)) continue;
        // A hard link takes none where its file is unpacked too, but that is not counted on.
        const XarEntry& entry = item.entry->type == Type::hardLink ? *originalOf(item, byId).entry : *item.entry;
        if (entry.size > space) failTooLarge("There is not enough space for what the archive holds.");
        space -= entry.size;
    }
    for (const Item& item : items) {
        if (!isNamed(item.entry->path, names)) continue;
        // Whoever unpacks owns what is unpacked.
        const ItemStatus status{.mode = item.entry->mode, .user = ::geteuid(), .group = ::getegid()};
        switch (item.entry->type) {
            case Type::folder:
                tree.makeFolder(item.path, status);
                break;
            case Type::link:
                if (item.entry->target.empty()) failDamaged("The archive holds a link that leads nowhere.");
                tree.makeLink(item.path, status, item.entry->target);
                break;
            case Type::hardLink:
                if (const Item& original = originalOf(item, byId); isNamed(original.entry->path, names))
                    tree.makeHardLink(item.path, original.path);
                else
                    tree.makeFile(item.path, status, archive.source(*original.entry));
                break;
            case Type::file:
            case Type::other:
                tree.makeFile(item.path, status, archive.source(*item.entry));
                break;
        }
    }
    tree.finish();
}

}  // namespace tarvik::xar::Extraction
