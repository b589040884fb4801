#include "Installers/Planning/InstallerPlan.h"

#include "Platform/Text/Json.h"

namespace tarvik {

void to_json(nlohmann::json& json, const InstallerPlan& plan) {
    Json::write(json, "sourcePath", plan.sourcePath);
    Json::write(json, "optionID", plan.optionID);
    Json::write(json, "targetDrivePath", plan.targetDrivePath);
    Json::write(json, "actions", plan.actions);
    Json::write(json, "warnings", plan.warnings);
    Json::write(json, "neededBytes", plan.neededBytes);
}

void from_json(const nlohmann::json& json, InstallerPlan& plan) {
    Json::read(json, "sourcePath", plan.sourcePath);
    Json::read(json, "optionID", plan.optionID);
    Json::read(json, "targetDrivePath", plan.targetDrivePath);
    Json::read(json, "actions", plan.actions);
    Json::read(json, "warnings", plan.warnings);
    Json::read(json, "neededBytes", plan.neededBytes);
}

}  // namespace tarvik
