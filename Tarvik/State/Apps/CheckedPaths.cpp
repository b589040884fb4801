#include "State/Apps/CheckedPaths.h"

#include "Platform/Files/Files.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <set>

namespace tarvik {

namespace {

/// Standardized, in the order of paths, none at or below another one.
std::vector<fs::path> uppermost(const std::vector<fs::path>& roots) {
    std::set<fs::path> sorted;
    for (const fs::path& root : roots) sorted.insert(Files::standardized(root));
    std::vector<fs::path> kept;
    for (const fs::path& root : sorted)
        if (kept.empty() || !Files::isAtOrBelow(root, kept.back())) kept.push_back(root);
    return kept;
}

}  // namespace

CheckedPaths::Paths::const_iterator CheckedPaths::ancestorOf(const fs::path& path) const {
    // As none lies below another one, nothing stands between them.
    const auto after = m_paths.upper_bound(path);
    if (after == m_paths.begin()) return m_paths.end();
    const auto before = std::prev(after);
    return Files::isAtOrBelow(path, before->first) ? before : m_paths.end();
}

std::pair<CheckedPaths::Paths::const_iterator, CheckedPaths::Paths::const_iterator> CheckedPaths::rangeBelow(
    const fs::path& path) const {
    const auto first = m_paths.lower_bound(path);
    const auto last = std::find_if_not(first, m_paths.end(),
                                       [&](const auto& entry) { return Files::isAtOrBelow(entry.first, path); });
    return {first, last};
}

CheckedPaths::State CheckedPaths::stateOf(const fs::path& path) const {
    if (ancestorOf(path) != m_paths.end()) return State::all;
    const auto next = m_paths.lower_bound(path);
    return next != m_paths.end() && Files::isAtOrBelow(next->first, path) ? State::some : State::none;
}

void CheckedPaths::check(const fs::path& path, std::int64_t bytes) {
    if (ancestorOf(path) != m_paths.end()) return;
    eraseBelow(path);
    m_paths.emplace(path, bytes);
}

void CheckedPaths::uncheck(const fs::path& path, const ChildrenOf& childrenOf) {
    eraseBelow(path);
    const auto ticked = ancestorOf(path);
    if (ticked == m_paths.end()) return;
    fs::path folder = ticked->first;
    m_paths.erase(ticked);
    std::map<fs::path, std::int64_t> rest;
    while (folder != path) {
        const std::vector<Sized> children = childrenOf(folder);
        const auto next = std::find_if(children.begin(), children.end(),
                                       [&](const Sized& child) { return Files::isAtOrBelow(path, child.path); });
        if (next == children.end()) return;
        for (const Sized& child : children)
            if (child.path != next->path) rest.emplace(child.path, child.bytes);
        folder = next->path;
    }
    m_paths.merge(rest);
}

void CheckedPaths::setBytes(const fs::path& path, std::int64_t bytes) {
    const auto ticked = m_paths.find(path);
    if (ticked != m_paths.end()) ticked->second = bytes;
}

void CheckedPaths::eraseBelow(const fs::path& path) {
    const auto [first, last] = rangeBelow(path);
    m_paths.erase(first, last);
}

std::vector<fs::path> CheckedPaths::within(const std::vector<fs::path>& roots) const {
    std::vector<fs::path> paths;
    for (const fs::path& root : uppermost(roots)) {
        const auto [first, last] = rangeBelow(root);
        std::transform(first, last, std::back_inserter(paths), [](const auto& entry) { return entry.first; });
    }
    return paths;
}

std::int64_t CheckedPaths::bytesWithin(const std::vector<fs::path>& roots) const {
    std::int64_t sum = 0;
    for (const fs::path& root : uppermost(roots)) {
        const auto [first, last] = rangeBelow(root);
        sum = std::accumulate(first, last, sum,
                              [](std::int64_t before, const auto& entry) { return before + entry.second; });
    }
    return sum;
}

void CheckedPaths::removeWithin(const std::vector<fs::path>& roots) {
    for (const fs::path& root : roots) eraseBelow(Files::standardized(root));
}

}  // namespace tarvik
