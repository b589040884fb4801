#include "Installers/Inspection/TrustSummary.h"

#include "Platform/Basics/FieldHash.h"
#include "Platform/Text/Json.h"

namespace tarvik {

void to_json(nlohmann::json& json, const TrustSummary& trust) {
    Json::write(json, "status", trust.status);
    Json::write(json, "details", trust.details);
    Json::write(json, "hasScripts", trust.hasScripts);
    Json::write(json, "hasPrivilegedPayload", trust.hasPrivilegedPayload);
}

void from_json(const nlohmann::json& json, TrustSummary& trust) {
    Json::read(json, "status", trust.status);
    Json::read(json, "details", trust.details);
    Json::read(json, "hasScripts", trust.hasScripts);
    Json::read(json, "hasPrivilegedPayload", trust.hasPrivilegedPayload);
}

}  // namespace tarvik

std::size_t std::hash<tarvik::TrustSummary>::operator()(const tarvik::TrustSummary& trust) const noexcept {
    return tarvik::FieldHash::of(trust.status, trust.details, trust.hasScripts, trust.hasPrivilegedPayload);
}
