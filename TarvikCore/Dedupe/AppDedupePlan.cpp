#include "Dedupe/AppDedupePlan.h"

#include "Platform/Text/Json.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tarvik {

namespace {

constexpr std::array<std::pair<AppDedupeItemKind, std::string_view>, 3> kindTexts = {
    {{AppDedupeItemKind::realApp, "realApp"},
     {AppDedupeItemKind::tarvikLauncher, "tarvikLauncher"},
     {AppDedupeItemKind::symlink, "symlink"}}};

}  // namespace

std::string_view textOf(AppDedupeItemKind kind) {
    return kindTexts.at(static_cast<std::size_t>(kind)).second;
}

std::optional<AppDedupeItemKind> appDedupeItemKindOf(std::string_view text) {
    const auto* const found =
        std::find_if(kindTexts.begin(), kindTexts.end(), [&](const auto& entry) { return entry.second == text; });
    if (found == kindTexts.end()) return std::nullopt;
    return found->first;
}

std::vector<AppDedupeItem> AppDedupePlan::removableItems() const {
    std::vector<AppDedupeItem> all;
    for (const AppDedupeGroup& group : groups) all.insert(all.end(), group.remove.begin(), group.remove.end());
    return all;
}

std::int64_t AppDedupePlan::removableBytes() const {
    std::int64_t bytes = 0;
    for (const AppDedupeGroup& group : groups)
        for (const AppDedupeItem& item : group.remove) bytes += item.sizeBytes;
    return bytes;
}

void to_json(nlohmann::json& json, const AppDedupeItem& item) {
    Json::write(json, "path", item.path);
    Json::write(json, "displayName", item.displayName);
    Json::write(json, "bundleIdentifier", item.bundleIdentifier);
    Json::write(json, "effectiveBundleIdentifier", item.effectiveBundleIdentifier);
    Json::write(json, "kind", std::string(textOf(item.kind)));
    Json::write(json, "targetPath", item.targetPath);
    Json::write(json, "insideSymlinkedFolder", item.insideSymlinkedFolder);
    Json::write(json, "sizeBytes", item.sizeBytes);
}

void from_json(const nlohmann::json& json, AppDedupeItem& item) {
    Json::read(json, "path", item.path);
    Json::read(json, "displayName", item.displayName);
    Json::read(json, "bundleIdentifier", item.bundleIdentifier);
    Json::read(json, "effectiveBundleIdentifier", item.effectiveBundleIdentifier);
    const auto kind = appDedupeItemKindOf(Json::decoded<std::string>(Json::member(json, "kind")));
    if (!kind) Json::refuse("a kind");
    item.kind = *kind;
    Json::read(json, "targetPath", item.targetPath);
    Json::read(json, "insideSymlinkedFolder", item.insideSymlinkedFolder);
    Json::read(json, "sizeBytes", item.sizeBytes);
}

void to_json(nlohmann::json& json, const AppDedupeGroup& group) {
    Json::write(json, "bundleIdentifier", group.bundleIdentifier);
    Json::write(json, "displayName", group.displayName);
    Json::write(json, "keep", group.keep);
    Json::write(json, "remove", group.remove);
    Json::write(json, "items", group.items);
    Json::write(json, "reason", group.reason);
}

void from_json(const nlohmann::json& json, AppDedupeGroup& group) {
    Json::read(json, "bundleIdentifier", group.bundleIdentifier);
    Json::read(json, "displayName", group.displayName);
    Json::read(json, "keep", group.keep);
    Json::read(json, "remove", group.remove);
    Json::read(json, "items", group.items);
    Json::read(json, "reason", group.reason);
}

void to_json(nlohmann::json& json, const AppDedupePlan& plan) {
    Json::write(json, "groups", plan.groups);
    Json::writeReferenceDate(json, "scannedAt", plan.scannedAt);
}

void from_json(const nlohmann::json& json, AppDedupePlan& plan) {
    Json::read(json, "groups", plan.groups);
    Json::readReferenceDate(json, "scannedAt", plan.scannedAt);
}

void to_json(nlohmann::json& json, const AppDedupeRunResult& result) {
    Json::write(json, "plan", result.plan);
    Json::write(json, "dryRun", result.dryRun);
    Json::write(json, "movedItems", result.movedItems);
}

void from_json(const nlohmann::json& json, AppDedupeRunResult& result) {
    Json::read(json, "plan", result.plan);
    Json::read(json, "dryRun", result.dryRun);
    Json::read(json, "movedItems", result.movedItems);
}

}  // namespace tarvik
