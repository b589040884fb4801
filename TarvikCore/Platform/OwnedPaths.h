#pragma once

#include "Platform/Json.h"

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

inline void to_json(nlohmann::json& json, const OwnedPaths& paths) {
    Json::write(json, "excludesDotfileAndNodeCaches", paths.excludesDotfileAndNodeCaches);
    Json::write(json, "extraPaths", paths.extraPaths);
}

inline void from_json(const nlohmann::json& json, OwnedPaths& paths) {
    Json::read(json, "excludesDotfileAndNodeCaches", paths.excludesDotfileAndNodeCaches);
    Json::read(json, "extraPaths", paths.extraPaths);
}

}  // namespace tarvik
