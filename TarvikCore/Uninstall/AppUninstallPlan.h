#pragma once

#include "Applications/AppRecord.h"
#include "Uninstall/UninstallCandidate.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace tarvik {

/// What could go with an application, for a person to read before anything happens.
struct AppUninstallPlan {
    AppRecord app;
    /// Each path once, in the order of the scan: the bundle first.
    std::vector<UninstallCandidate> candidates;
    std::vector<std::string> warnings;
    /// In bytes: of all candidates, and of those that the selection takes.
    std::int64_t totalBytes = 0;
    std::int64_t selectedBytes = 0;

    /// The candidates by category, in the order of the categories; none without candidates.
    std::vector<std::pair<UninstallCategory, std::vector<UninstallCandidate>>> grouped() const;

    bool operator==(const AppUninstallPlan&) const = default;
};

/// One key a field, of the field's name. @throws Failure on reading a record without a key, or with a value of the
/// wrong type.
void to_json(nlohmann::json& json, const AppUninstallPlan& plan);
void from_json(const nlohmann::json& json, AppUninstallPlan& plan);

}  // namespace tarvik
