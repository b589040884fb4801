#pragma once

#include "Uninstall/UninstallCategory.h"

#include <nlohmann/json_fwd.hpp>

#include <optional>

namespace tarvik {

/// Which classes of things a user wants gone with an application, whose bundle itself always goes.
struct UninstallSelection {
    bool includeData = false;
    bool includeCaches = false;
    bool includeLogs = false;
    bool includePrefs = false;
    bool includeContainers = false;
    bool includeReceipts = false;
    bool includeLaunchAgents = false;
    bool includeLaunchDaemons = false;
    /// The copy on a drive that a link or launcher leads to.
    bool includeExternalTarget = false;

    /// All but what needs an administrator's rights and the copy on a drive: these must be asked for by name.
    static const UninstallSelection everything;
    static const UninstallSelection executableOnly;

    /// Whether this class of things is wanted; nothing for those that no field speaks of.
    std::optional<bool> includes(UninstallCategory category) const;

    bool operator==(const UninstallSelection&) const = default;
};

/// One key a field, of the field's name. @throws Failure on reading a record without a key, or with a value of the
/// wrong type.
void to_json(nlohmann::json& json, const UninstallSelection& selection);
void from_json(const nlohmann::json& json, UninstallSelection& selection);

}  // namespace tarvik
