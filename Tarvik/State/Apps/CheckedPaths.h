#pragma once

#include "Platform/Basics/Path.h"

#include <cstdint>
#include <functional>
#include <map>
#include <utility>
#include <vector>

namespace tarvik {

/// Files and folders that are ticked in trees. A folder stands for all that is in it, so no path of the set lies below
/// another one. Paths are standardized.
class CheckedPaths {
public:
    enum class State { none, some, all };
    struct Sized {
        fs::path path;
        std::int64_t bytes = 0;
    };
    /// What is in a folder, as far as that is known; empty when it is not.
    using ChildrenOf = std::function<std::vector<Sized>(const fs::path& folder)>;

    /// All when the path is ticked or lies in a ticked folder, some when only part of what is in it is ticked.
    State stateOf(const fs::path& path) const;
    void check(const fs::path& path, std::int64_t bytes);
    /// Of a ticked folder that the path lies in, all else stays ticked; where that is not known, nothing of it does.
    void uncheck(const fs::path& path, const ChildrenOf& childrenOf);
    /// Takes the size of a ticked path that was not known before.
    void setBytes(const fs::path& path, std::int64_t bytes);

    /// What is ticked at or below the roots, and the bytes of that; and its removal.
    std::vector<fs::path> within(const std::vector<fs::path>& roots) const;
    std::int64_t bytesWithin(const std::vector<fs::path>& roots) const;
    void removeWithin(const std::vector<fs::path>& roots);

    bool operator==(const CheckedPaths&) const = default;

private:
    using Paths = std::map<fs::path, std::int64_t>;

    /// Those at or below a path: in the order of paths they stand together.
    std::pair<Paths::const_iterator, Paths::const_iterator> rangeBelow(const fs::path& path) const;
    void eraseBelow(const fs::path& path);
    Paths::const_iterator ancestorOf(const fs::path& path) const;

    Paths m_paths;
};

}  // namespace tarvik
