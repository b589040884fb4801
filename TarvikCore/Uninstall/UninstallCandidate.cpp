#include "Uninstall/UninstallCandidate.h"

#include "Platform/Text/Json.h"

namespace tarvik {

void to_json(nlohmann::json& json, const UninstallCandidate& candidate) {
    Json::write(json, "path", candidate.path);
    Json::write(json, "category", std::string(textOf(candidate.category)));
    Json::write(json, "sizeBytes", candidate.sizeBytes);
    Json::write(json, "confidence", std::string(textOf(candidate.confidence)));
    Json::write(json, "reason", candidate.reason);
    Json::write(json, "defaultSelected", candidate.defaultSelected);
    Json::write(json, "isPrivileged", candidate.isPrivileged);
    Json::write(json, "isSymlink", candidate.isSymlink);
}

void from_json(const nlohmann::json& json, UninstallCandidate& candidate) {
    Json::read(json, "path", candidate.path);
    const auto category = uninstallCategoryOf(Json::decoded<std::string>(Json::member(json, "category")));
    if (!category) Json::refuse("a category");
    candidate.category = *category;
    Json::read(json, "sizeBytes", candidate.sizeBytes);
    const auto confidence = uninstallConfidenceOf(Json::decoded<std::string>(Json::member(json, "confidence")));
    if (!confidence) Json::refuse("a confidence");
    candidate.confidence = *confidence;
    Json::read(json, "reason", candidate.reason);
    Json::read(json, "defaultSelected", candidate.defaultSelected);
    Json::read(json, "isPrivileged", candidate.isPrivileged);
    Json::read(json, "isSymlink", candidate.isSymlink);
    candidate.seen.reset();
    candidate.seenIdentifier.reset();
}

}  // namespace tarvik
