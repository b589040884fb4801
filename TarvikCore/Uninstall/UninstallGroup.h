#pragma once

#include "Applications/AppRecord.h"

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tarvik {

/// The applications of one vendor, as one line of the grouped list.
struct UninstallGroup {
    /// What the members have in common: the first two pieces of their bundle identifiers.
    std::string key;
    std::string label;
    std::optional<std::string> developer;
    std::vector<AppRecord> apps;

    std::size_t totalApps() const { return apps.size(); }

    bool operator==(const UninstallGroup&) const = default;
};

void to_json(nlohmann::json& json, const UninstallGroup& group);
void from_json(const nlohmann::json& json, UninstallGroup& group);

}  // namespace tarvik
