#include "Uninstall/UninstallGroup.h"

#include "Platform/Text/Json.h"

namespace tarvik {

void to_json(nlohmann::json& json, const UninstallGroup& group) {
    Json::write(json, "key", group.key);
    Json::write(json, "label", group.label);
    Json::write(json, "developer", group.developer);
    Json::write(json, "apps", group.apps);
}

void from_json(const nlohmann::json& json, UninstallGroup& group) {
    Json::read(json, "key", group.key);
    Json::read(json, "label", group.label);
    Json::read(json, "developer", group.developer);
    Json::read(json, "apps", group.apps);
}

}  // namespace tarvik
