#include "Installers/Tracking/Snapshotter.h"

#include "Platform/Files/Files.h"
#include "Platform/Files/TreeWalk.h"
#include "Platform/Machine/SystemFolders.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace tarvik::Snapshotter {

namespace {

void appendTree(PathSet& paths, const fs::path& root) {
    if (!Files::exists(root)) return;
    paths.append(root.native());
    std::string path = root.native();
    if (!path.ends_with('/')) path += '/';
    const std::size_t rootLength = path.size();
    TreeWalk walk(root, {.order = TreeWalk::Order::listing, .skipsHidden = true});
    while (walk.next()) {
        if (walk.event() != TreeWalk::Event::item) continue;
        path.resize(rootLength);
        path += walk.relativePath();
        paths.append(path);
    }
}

PathSet united(const PathSet& one, const PathSet& other) {
    PathSet both;
    auto left = one.begin();
    auto right = other.begin();
    while (left != one.end() || right != other.end()) {
        const bool takesLeft = right == other.end() || (left != one.end() && !PathSet::isBefore(*right, *left));
        both.append(takesLeft ? *left : *right);  // Which leaves out what was in both.
        ++(takesLeft ? left : right);
    }
    return both;
}

}  // namespace

std::vector<fs::path> defaultRoots(const Host& host) {
    const fs::path library = SystemFolders::library(host);
    const fs::path ownLibrary = host.home / "Library";
    return {SystemFolders::applications(host),  host.home / "Applications", library / "Application Support",
            library / "LaunchAgents",           library / "LaunchDaemons",  library / "PrivilegedHelperTools",
            ownLibrary / "Application Support", ownLibrary / "LaunchAgents"};
}

FileSnapshot capture(const std::vector<fs::path>& roots) {
    std::vector<fs::path> inOrder;
    inOrder.reserve(roots.size());
    for (const fs::path& root : roots) inOrder.push_back(Files::standardized(root));
    std::sort(inOrder.begin(), inOrder.end(), [](const fs::path& one, const fs::path& other) {
        return PathSet::isBefore(one.native(), other.native());
    });

    FileSnapshot snapshot;
    const fs::path* outer = nullptr;
    for (const fs::path& root : inOrder) {
        // All that is below a root stands before the next root, unless that one is inside it.
        if (outer && Files::isAtOrBelow(root, *outer)) {
            PathSet inner;
            appendTree(inner, root);
            snapshot.paths = united(snapshot.paths, inner);
        } else {
            appendTree(snapshot.paths, root);
            outer = &root;
        }
    }
    return snapshot;
}

std::vector<std::string> added(const FileSnapshot& before, const FileSnapshot& after) {
    std::vector<std::string> paths;
    auto old = before.paths.begin();
    for (const std::string_view path : after.paths) {
        while (old != before.paths.end() && PathSet::isBefore(*old, path)) ++old;
        if (old == before.paths.end() || *old != path) paths.emplace_back(path);
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

}  // namespace tarvik::Snapshotter
