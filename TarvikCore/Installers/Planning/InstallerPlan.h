#pragma once

#include "Platform/Basics/Path.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace tarvik {

/// What a run of an installer would do. A run does not read it.
struct InstallerPlan {
    /// Absolute.
    fs::path sourcePath;
    /// The `id` of the option.
    std::string optionID;
    /// Where the drive is mounted.
    fs::path targetDrivePath;
    /// The steps: one line each, a tag first, then fields with tabs between them.
    std::vector<std::string> actions;
    /// What the user should read first.
    std::vector<std::string> warnings;
    /// The sizes of all items.
    std::int64_t neededBytes = 0;

    bool operator==(const InstallerPlan&) const = default;
};

/// One key a field, of the field's name. @throws Failure on reading a record without one of them, or with a value of
/// the wrong type.
void to_json(nlohmann::json& json, const InstallerPlan& plan);
void from_json(const nlohmann::json& json, InstallerPlan& plan);

}  // namespace tarvik
