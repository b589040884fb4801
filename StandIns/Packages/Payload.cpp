#include "Packages/Payload.h"

#include "Packages/Cpio.h"
#include "Packages/PackageFailure.h"

#include <map>
#include <set>

namespace tarvik::packages::Payload {

namespace {

constexpr std::uint64_t mostItems = 2'000'000;

SafeName::Components below(const SafeName::Components& place, const SafeName::Components& path) {
    auto all = place;
    all.insert(all.end(), path.begin(), path.end());
    return all;
}

/// Whether a folder on the way to the path is one of `items`.
bool leadsThrough(const std::set<std::string>& items, const SafeName::Components& path) {
    std::string above;
    for (std::size_t index = 0; index + 1 < path.size(); ++index) {
        if (index > 0) above += '/';
        above += path[index];
        if (items.contains(above)) return true;
    }
    return false;
}

/// The names of one file: in some archives the last of them bears the bytes.
using Twins = std::map<SafeName::Components, std::vector<SafeName::Components>>;

void writeHardLink(Cpio& items, BoundedTree& tree, const SafeName::Components& place, Twins& twins) {
    const CpioEntry& entry = items.entry();
    const auto path = below(place, entry.path);
    const auto original = below(place, entry.original);
    auto& names = twins[original];
    if (entry.size == 0) {
        tree.makeHardLink(path, original);
        names.push_back(path);
        return;
    }
    tree.makeFile(path, entry.status, items.bytes());
    names.push_back(original);
    for (const auto& name : names)
        if (name != path) tree.makeHardLink(name, path);
    names.pop_back();
    names.push_back(path);
}

}  // namespace

Measure measured(ByteSource packed, std::uint64_t mostBytes) {
    Measure measure;
    std::set<std::string> links;
    std::set<std::string> files;
    Cpio items(std::move(packed));
    while (items.next()) {
        const CpioEntry& entry = items.entry();
        const std::string path = SafeName::joined(entry.path);
        if (++measure.items > mostItems) failTooLarge("The payload holds too many items.");
        if (entry.size > mostBytes - measure.bytes)
            failTooLarge("There is not enough space for what the payload holds.");
        measure.bytes += entry.size;
        if (leadsThrough(links, entry.path)) failUnsafe("The payload would write through a link of its own: " + path);
        if (entry.type == CpioEntry::Type::link) links.insert(path);
        if (entry.type == CpioEntry::Type::file) files.insert(path);
        if (entry.type == CpioEntry::Type::hardLink && !files.contains(SafeName::joined(entry.original)))
            failUnsafe("The payload holds a hard link to what is not in it: " + path);
        if (entry.path.empty() && entry.type != CpioEntry::Type::folder)
            failUnsafe("The payload holds an item without a name.");
        // The bytes are read to the end, so that their checksums are proved.
        const ByteSource bytes = items.bytes();
        while (!bytes().empty()) continue;
        if (!path.empty()) measure.paths.push_back(path);
    }
    return measure;
}

void write(ByteSource packed, BoundedTree& tree, const SafeName::Components& place) {
    Twins twins;
    Cpio items(std::move(packed));
    while (items.next()) {
        const CpioEntry& entry = items.entry();
        const auto path = below(place, entry.path);
        switch (entry.type) {
            case CpioEntry::Type::folder:
                if (!entry.path.empty()) tree.makeFolder(path, entry.status);
                break;
            case CpioEntry::Type::file:
                tree.makeFile(path, entry.status, items.bytes());
                break;
            case CpioEntry::Type::link:
                tree.makeLink(path, entry.status, entry.target);
                break;
            case CpioEntry::Type::hardLink:
                writeHardLink(items, tree, place, twins);
                break;
        }
    }
    tree.finish();
}

}  // namespace tarvik::packages::Payload
