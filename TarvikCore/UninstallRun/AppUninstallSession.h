#pragma once

#include "Platform/Basics/Path.h"
#include "Uninstall/UninstallCategory.h"

#include <nlohmann/json_fwd.hpp>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarvik {

/// The record of one uninstall.
struct AppUninstallSession {
    /// What became of one item.
    struct MovedItem {
        fs::path originalPath;
        UninstallCategory category = UninstallCategory::executable;
        /// In bytes, as it was planned.
        std::int64_t sizeBytes = 0;
        /// Its new place in the Trash.
        std::optional<fs::path> trashedTo;
        /// The folder beside it into which it was to go because the Trash refused it, whether it got there or not.
        std::optional<fs::path> stashedTo;
        bool succeeded = false;
        std::optional<std::string> error;

        bool operator==(const MovedItem&) const = default;
    };

    /// The local time at its end, "20261115_174543".
    std::string id;
    fs::path appPath;
    std::string appName;
    std::optional<std::string> bundleIdentifier;
    std::chrono::system_clock::time_point createdAt;
    /// In the order in which they were handled.
    std::vector<MovedItem> movedItems;
    /// The identifiers of packages.
    std::vector<std::string> forgottenReceipts;
    /// It was a rehearsal: nothing was touched.
    bool dryRun = false;

    /// How many items went, and how many bytes. A record can hold any number: less than nothing counts as nothing, and
    /// what is too much for a sum as the most there is.
    std::int64_t goneCount() const;
    std::int64_t goneBytes() const;

    bool operator==(const AppUninstallSession&) const = default;
};

/// One key a field, of the field's name; what is absent has no key. @throws Failure on reading a record without a key
/// that it needs, or with a value of the wrong type.
void to_json(nlohmann::json& json, const AppUninstallSession::MovedItem& item);
void from_json(const nlohmann::json& json, AppUninstallSession::MovedItem& item);
void to_json(nlohmann::json& json, const AppUninstallSession& session);
void from_json(const nlohmann::json& json, AppUninstallSession& session);

}  // namespace tarvik
