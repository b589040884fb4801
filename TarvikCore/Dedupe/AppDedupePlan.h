#pragma once

#include "Platform/Basics/Path.h"
#include "UninstallRun/AppUninstallSession.h"

#include <nlohmann/json_fwd.hpp>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik {

enum class AppDedupeItemKind {
    realApp,         ///< an ordinary bundle
    tarvikLauncher,  ///< one of our launchers
    symlink,         ///< the bundle path is a link
};

/// The text that stands for a kind in JSON: the enumerator's own name.
std::string_view textOf(AppDedupeItemKind kind);
std::optional<AppDedupeItemKind> appDedupeItemKindOf(std::string_view text);

/// One bundle that shares its identifier with another one.
struct AppDedupeItem {
    fs::path path;
    std::string displayName;
    /// As the bundle's list has it, and without the suffix by which launchers differ from what they open.
    std::string bundleIdentifier;
    std::string effectiveBundleIdentifier;
    AppDedupeItemKind kind = AppDedupeItemKind::realApp;
    /// What a launcher opens.
    std::optional<fs::path> targetPath;
    /// A folder above it, up to the one that was searched, is a link.
    bool insideSymlinkedFolder = false;
    std::int64_t sizeBytes = 0;

    bool operator==(const AppDedupeItem&) const = default;
};

/// The bundles of one identifier of which some can go.
struct AppDedupeGroup {
    /// Those of the item that stays.
    std::string bundleIdentifier;
    std::string displayName;
    AppDedupeItem keep;
    /// What goes, and all items, both by path.
    std::vector<AppDedupeItem> remove;
    std::vector<AppDedupeItem> items;
    std::string reason;

    bool operator==(const AppDedupeGroup&) const = default;
};

struct AppDedupePlan {
    /// By display name.
    std::vector<AppDedupeGroup> groups;
    std::chrono::system_clock::time_point scannedAt;

    /// What goes of all groups, in their order, and its size in bytes.
    std::vector<AppDedupeItem> removableItems() const;
    std::int64_t removableBytes() const;

    bool operator==(const AppDedupePlan&) const = default;
};

struct AppDedupeRunResult {
    AppDedupePlan plan;
    bool dryRun = false;
    /// One for each removable item, those that failed included.
    std::vector<AppUninstallSession::MovedItem> movedItems;

    bool operator==(const AppDedupeRunResult&) const = default;
};

/// One key a field, of the field's name; what is absent has no key. @throws Failure on reading a record without a key
/// that it needs, or with a value of the wrong type.
void to_json(nlohmann::json& json, const AppDedupeItem& item);
void from_json(const nlohmann::json& json, AppDedupeItem& item);
void to_json(nlohmann::json& json, const AppDedupeGroup& group);
void from_json(const nlohmann::json& json, AppDedupeGroup& group);
void to_json(nlohmann::json& json, const AppDedupePlan& plan);
void from_json(const nlohmann::json& json, AppDedupePlan& plan);
void to_json(nlohmann::json& json, const AppDedupeRunResult& result);
void from_json(const nlohmann::json& json, AppDedupeRunResult& result);

}  // namespace tarvik
