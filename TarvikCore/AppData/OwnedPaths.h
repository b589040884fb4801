#pragma once

#include <string>
#include <vector>

namespace tarvik {

/// What a well-known application owns beyond the standard locations.
struct OwnedPaths {
    /// Its dotfile and Node cache entries stay out of its related data.
    bool excludesDotfileAndNodeCaches = false;
    /// Further paths that belong to it, absolute or relative to the user's home.
    std::vector<std::string> extraPaths;

    bool operator==(const OwnedPaths&) const = default;
};

}  // namespace tarvik
