#include "State/CheckedPaths.h"

#include "Platform/Files.h"

#include <algorithm>
#include <iterator>

namespace tarvik {

namespace {

bool isWithin(const fs::path& path, const std::vector<fs::path>& roots) {
    return std::any_of(roots.begin(), roots.end(),
                       [&](const fs::path& root) { return Files::isAtOrBelow(path, Files::standardized(root)); });
}

}  // namespace

std::map<fs::path, std::int64_t>::const_iterator CheckedPaths::ancestorOf(const fs::path& path) const {
    return std::find_if(m_paths.begin(), m_paths.end(),
                        [&](const auto& entry) { return Files::isAtOrBelow(path, entry.first); });
}

CheckedPaths::State CheckedPaths::stateOf(const fs::path& path) const {
    if (ancestorOf(path) != m_paths.end()) return State::all;
    const bool hasSome = std::any_of(m_paths.begin(), m_paths.end(),
                                     [&](const auto& entry) { return Files::isAtOrBelow(entry.first, path); });
    return hasSome ? State::some : State::none;
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
    std::erase_if(m_paths, [&](const auto& entry) { return Files::isAtOrBelow(entry.first, path); });
}

std::vector<fs::path> CheckedPaths::within(const std::vector<fs::path>& roots) const {
    std::vector<fs::path> paths;
    for (const auto& [path, bytes] : m_paths)
        if (isWithin(path, roots)) paths.push_back(path);
    return paths;
}

std::int64_t CheckedPaths::bytesWithin(const std::vector<fs::path>& roots) const {
    std::int64_t sum = 0;
    for (const auto& [path, bytes] : m_paths)
        if (isWithin(path, roots)) sum += bytes;
    return sum;
}

void CheckedPaths::removeWithin(const std::vector<fs::path>& roots) {
    std::erase_if(m_paths, [&](const auto& entry) { return isWithin(entry.first, roots); });
}

}  // namespace tarvik
