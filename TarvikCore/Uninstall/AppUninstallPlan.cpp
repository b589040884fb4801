#include "Uninstall/AppUninstallPlan.h"

#include "Platform/Text/Json.h"

namespace tarvik {

std::vector<std::pair<UninstallCategory, std::vector<UninstallCandidate>>> AppUninstallPlan::grouped() const {
    std::vector<std::pair<UninstallCategory, std::vector<UninstallCandidate>>> groups;
    for (const UninstallCategory category : allUninstallCategories()) {
        std::vector<UninstallCandidate> members;
        for (const UninstallCandidate& candidate : candidates)
            if (candidate.category == category) members.push_back(candidate);
        if (!members.empty()) groups.emplace_back(category, std::move(members));
    }
    return groups;
}

void to_json(nlohmann::json& json, const AppUninstallPlan& plan) {
    Json::write(json, "app", plan.app);
    Json::write(json, "candidates", plan.candidates);
    Json::write(json, "warnings", plan.warnings);
    Json::write(json, "totalBytes", plan.totalBytes);
    Json::write(json, "selectedBytes", plan.selectedBytes);
}

void from_json(const nlohmann::json& json, AppUninstallPlan& plan) {
    Json::read(json, "app", plan.app);
    Json::read(json, "candidates", plan.candidates);
    Json::read(json, "warnings", plan.warnings);
    Json::read(json, "totalBytes", plan.totalBytes);
    Json::read(json, "selectedBytes", plan.selectedBytes);
}

}  // namespace tarvik
