#include "Installers/Inspection/ContainedItemScanner.h"

#include "Installers/Inspection/InstallerKindDetector.h"
#include "Installers/Inspection/SourceItem.h"
#include "Platform/Files/TreeWalk.h"

#include <algorithm>

namespace tarvik::ContainedItemScanner {

namespace {

bool isListed(InstallerKind kind) {
    return kind == InstallerKind::app || kind == InstallerKind::pkg || kind == InstallerKind::mpkg;
}

}  // namespace

std::vector<InstallableItem> scan(const Host& host, const fs::path& root) {
    std::vector<InstallableItem> items;
    TreeWalk walk(root, {.order = TreeWalk::Order::any, .skipsHidden = true});
    while (walk.next()) {
        if (walk.event() != TreeWalk::Event::item) continue;
        // Scripts alone are known by their content, and they are not listed: no file needs to be opened.
        const auto kind = InstallerKindDetector::byName(walk.name());
        if (!kind || !isListed(*kind)) continue;
        items.push_back(SourceItem::of(host, root / walk.relativePath(), *kind));
        walk.skipContents();
    }
    std::sort(items.begin(), items.end(), [](const InstallableItem& left, const InstallableItem& right) {
        return left.path.native() < right.path.native();
    });
    return items;
}

}  // namespace tarvik::ContainedItemScanner
