#include "UninstallRun/AppUninstallSession.h"

#include "Platform/Text/Json.h"

#include <algorithm>
#include <limits>

namespace tarvik {

std::int64_t AppUninstallSession::goneCount() const {
    return std::count_if(movedItems.begin(), movedItems.end(), [](const MovedItem& item) { return item.succeeded; });
}

std::int64_t AppUninstallSession::goneBytes() const {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    std::int64_t bytes = 0;
    for (const MovedItem& item : movedItems)
        if (item.succeeded) bytes += std::clamp(item.sizeBytes, std::int64_t{0}, most - bytes);
    return bytes;
}

void to_json(nlohmann::json& json, const AppUninstallSession::MovedItem& item) {
    Json::write(json, "originalPath", item.originalPath);
    Json::write(json, "category", std::string(textOf(item.category)));
    Json::write(json, "sizeBytes", item.sizeBytes);
    Json::write(json, "trashedTo", item.trashedTo);
    Json::write(json, "stashedTo", item.stashedTo);
    Json::write(json, "succeeded", item.succeeded);
    Json::write(json, "error", item.error);
}

void from_json(const nlohmann::json& json, AppUninstallSession::MovedItem& item) {
    Json::read(json, "originalPath", item.originalPath);
    const auto category = uninstallCategoryOf(Json::decoded<std::string>(Json::member(json, "category")));
    if (!category) Json::refuse("a category");
    item.category = *category;
    Json::read(json, "sizeBytes", item.sizeBytes);
    Json::read(json, "trashedTo", item.trashedTo);
    Json::read(json, "stashedTo", item.stashedTo);
    Json::read(json, "succeeded", item.succeeded);
    Json::read(json, "error", item.error);
}

void to_json(nlohmann::json& json, const AppUninstallSession& session) {
    Json::write(json, "id", session.id);
    Json::write(json, "appPath", session.appPath);
    Json::write(json, "appName", session.appName);
    Json::write(json, "bundleIdentifier", session.bundleIdentifier);
    Json::writeReferenceDate(json, "createdAt", session.createdAt);
    Json::write(json, "movedItems", session.movedItems);
    Json::write(json, "forgottenReceipts", session.forgottenReceipts);
    Json::write(json, "dryRun", session.dryRun);
}

void from_json(const nlohmann::json& json, AppUninstallSession& session) {
    Json::read(json, "id", session.id);
    Json::read(json, "appPath", session.appPath);
    Json::read(json, "appName", session.appName);
    Json::read(json, "bundleIdentifier", session.bundleIdentifier);
    Json::readReferenceDate(json, "createdAt", session.createdAt);
    Json::read(json, "movedItems", session.movedItems);
    Json::read(json, "forgottenReceipts", session.forgottenReceipts);
    Json::read(json, "dryRun", session.dryRun);
}

}  // namespace tarvik
