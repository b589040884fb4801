#pragma once

#include "Installers/Tracking/PathSet.h"

#include <nlohmann/json_fwd.hpp>

namespace tarvik {

/// What stood below some folders at one time: absolute, standardized paths. It lives as long as one run of an
/// installer.
struct FileSnapshot {
    PathSet paths;

    bool operator==(const FileSnapshot&) const = default;
};

/// One key, `paths`, with a list in the order of the set. @throws Failure on reading another record.
void to_json(nlohmann::json& json, const FileSnapshot& snapshot);
void from_json(const nlohmann::json& json, FileSnapshot& snapshot);

}  // namespace tarvik
