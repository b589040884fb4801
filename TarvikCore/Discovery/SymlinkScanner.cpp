#include "Discovery/SymlinkScanner.h"

#include "Platform/Files/Files.h"
#include "Platform/Files/ListedFolder.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Storage/SizeCalculator.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

namespace tarvik::SymlinkScanner {

namespace {

std::optional<SymlinkEntry> linkAt(const fs::path& location) {
    const auto text = Files::linkText(location);
    if (!text) return std::nullopt;
    fs::path target = Files::standardized(location.parent_path() / *text);
    const bool isValid = Files::exists(target);
    return SymlinkEntry{.id = location.native(),
                        .location = location,
                        .target = std::move(target),
                        .isValid = isValid,
                        .targetSize = 0};
}

void addLinksIn(const fs::path& root, std::vector<SymlinkEntry>& links) {
    const auto folder = ListedFolder::at(root);
    if (!folder) return;
    for (std::size_t index = 0; index < folder->size(); ++index) {
        if (folder->type(index) != Files::ItemType::symbolicLink) continue;
        if (auto link = linkAt(root / folder->name(index))) links.push_back(std::move(*link));
    }
}

}  // namespace

std::vector<fs::path> defaultRoots(const Host& host) {
    return {SystemFolders::applications(host),
            host.home / "Applications",
            host.home / "Library/Application Support",
            host.home / "Library/Containers",
            host.home / "Library/Group Containers",
            host.home / "Music",
            host.home};
}

std::vector<SymlinkEntry> links(const std::vector<fs::path>& roots) {
    std::vector<fs::path> searched;
    std::vector<SymlinkEntry> found;
    for (const fs::path& named : roots) {
        const fs::path root = Files::standardized(named);
        if (std::find(searched.begin(), searched.end(), root) != searched.end()) continue;
        searched.push_back(root);
        addLinksIn(root, found);
    }
    std::sort(found.begin(), found.end(),
              [](const SymlinkEntry& left, const SymlinkEntry& right) { return left.id < right.id; });
    return found;
}

std::vector<SymlinkEntry> measured(const Host& host, std::vector<SymlinkEntry> links,
                                   const Cancellation& cancellation) {
    for (SymlinkEntry& link : links)
        if (link.isValid) link.targetSize = SizeCalculator::size(host, link.target, cancellation);
    return links;
}

std::vector<SymlinkEntry> scan(const Host& host, const std::vector<fs::path>& roots, const Cancellation& cancellation) {
    return measured(host, links(roots), cancellation);
}

}  // namespace tarvik::SymlinkScanner
