#include "Uninstall/UninstallSelection.h"

#include "Platform/Text/Json.h"

namespace tarvik {

namespace {

template <typename Selection, typename Visit>
void forEachChoice(Selection& selection, const Visit& visit) {
    visit("includeData", selection.includeData);
    visit("includeCaches", selection.includeCaches);
    visit("includeLogs", selection.includeLogs);
    visit("includePrefs", selection.includePrefs);
    visit("includeContainers", selection.includeContainers);
    visit("includeReceipts", selection.includeReceipts);
    visit("includeLaunchAgents", selection.includeLaunchAgents);
    visit("includeLaunchDaemons", selection.includeLaunchDaemons);
    visit("includeExternalTarget", selection.includeExternalTarget);
}

}  // namespace

const UninstallSelection UninstallSelection::everything = {.includeData = true,
                                                           .includeCaches = true,
                                                           .includeLogs = true,
                                                           .includePrefs = true,
                                                           .includeContainers = true,
                                                           .includeReceipts = false,
                                                           .includeLaunchAgents = true,
                                                           .includeLaunchDaemons = false,
                                                           .includeExternalTarget = false};
const UninstallSelection UninstallSelection::executableOnly = {};

std::optional<bool> UninstallSelection::includes(UninstallCategory category) const {
    switch (category) {
        case UninstallCategory::applicationSupport:
        case UninstallCategory::httpStorages:
        case UninstallCategory::webKit:
        case UninstallCategory::savedAppState:
            return includeData;
        case UninstallCategory::caches:
            return includeCaches;
        case UninstallCategory::logs:
            return includeLogs;
        case UninstallCategory::preferences:
            return includePrefs;
        case UninstallCategory::containers:
        case UninstallCategory::groupContainers:
            return includeContainers;
        case UninstallCategory::receipts:
            return includeReceipts;
        case UninstallCategory::launchAgents:
            return includeLaunchAgents;
        case UninstallCategory::launchDaemons:
            return includeLaunchDaemons;
        case UninstallCategory::executable:
        case UninstallCategory::installerSession:
            break;
    }
    return std::nullopt;
}

void to_json(nlohmann::json& json, const UninstallSelection& selection) {
    forEachChoice(selection, [&](const char* key, bool value) { Json::write(json, key, value); });
}

void from_json(const nlohmann::json& json, UninstallSelection& selection) {
    forEachChoice(selection, [&](const char* key, bool& value) { Json::read(json, key, value); });
}

}  // namespace tarvik
