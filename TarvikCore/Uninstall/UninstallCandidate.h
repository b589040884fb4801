#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/Files.h"
#include "Uninstall/UninstallCategory.h"
#include "Uninstall/UninstallConfidence.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <optional>
#include <string>

namespace tarvik {

/// One thing that may be removed with an application.
struct UninstallCandidate {
    /// Absolute, and what tells candidates apart; of a receipt the identifier of its package instead.
    fs::path path;
    UninstallCategory category = UninstallCategory::executable;
    /// In bytes, as the scan found it; 0 for receipts and records of sessions.
    std::int64_t sizeBytes = 0;
    UninstallConfidence confidence = UninstallConfidence::high;
    /// Why it belongs to the application, for the user.
    std::string reason;
    /// Whether it goes without being asked for.
    bool defaultSelected = false;
    /// It lies where only an administrator may write, or is a receipt.
    bool isPrivileged = false;
    bool isSymlink = false;
    /// What stood at the path when it was found, links not followed: whoever removes it later looks whether it is still
    /// that. It is no part of the record that is written.
    std::optional<Files::ItemInfo> seen = {};
    /// The same for the identifier of a copy on a drive: that of its launcher may be another one.
    std::optional<std::string> seenIdentifier = {};

    bool operator==(const UninstallCandidate&) const = default;
};

/// One key a field, of the field's name. @throws Failure on reading a record without a key, or with a value of the
/// wrong type.
void to_json(nlohmann::json& json, const UninstallCandidate& candidate);
void from_json(const nlohmann::json& json, UninstallCandidate& candidate);

}  // namespace tarvik
