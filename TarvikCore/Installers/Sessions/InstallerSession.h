#pragma once

#include "Installers/Sessions/InstallerSessionStatus.h"
#include "Platform/Basics/Path.h"

#include <nlohmann/json_fwd.hpp>

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tarvik {

/// The record of one run of an installer.
struct InstallerSession {
    /// The local time just before the install began, "20261115_174543": two runs in one second share it.
    std::string id;
    fs::path sourcePath;
    std::string optionID;
    /// When the record was made, after the install.
    std::chrono::system_clock::time_point createdAt;
    /// What was done: one line each, a tag first, then fields with tabs between them.
    std::vector<std::string> actions;
    /// Sorted.
    std::vector<fs::path> changedPaths;
    /// The identifiers of packages that came with the install, sorted.
    std::vector<std::string> newReceipts;
    InstallerSessionStatus status = InstallerSessionStatus::done;
    /// Where the drive was mounted.
    fs::path targetDrivePath;
    /// The applications that wait to be moved to the drive.
    std::vector<fs::path> pendingExternalizeApps;

    /// A copy with some fields changed; what is not given stays.
    InstallerSession with(std::optional<InstallerSessionStatus> newStatus,
                          std::optional<std::vector<std::string>> newActions = std::nullopt,
                          std::optional<std::vector<fs::path>> newPendingApps = std::nullopt) const;

    bool operator==(const InstallerSession&) const = default;
};

/// One key a field, of the field's name. Records of earlier versions have no `status`, `targetDrivePath` and
/// `pendingExternalizeApps`: they are done, on no drive, and nothing waits. @throws Failure on reading a record without
/// another key, or with a value of the wrong type.
void to_json(nlohmann::json& json, const InstallerSession& session);
void from_json(const nlohmann::json& json, InstallerSession& session);

}  // namespace tarvik

template <>
struct std::hash<tarvik::InstallerSession> {
    std::size_t operator()(const tarvik::InstallerSession& session) const noexcept;
};
