#include "Installers/Inspection/InstallerInspection.h"

#include "Platform/Basics/FieldHash.h"
#include "Platform/Text/Json.h"

namespace tarvik {

void to_json(nlohmann::json& json, const InstallerInspection& inspection) {
    Json::write(json, "sourcePath", inspection.sourcePath);
    Json::write(json, "kind", inspection.kind);
    Json::write(json, "items", inspection.items);
    Json::write(json, "warnings", inspection.warnings);
    Json::write(json, "trust", inspection.trust);
}

void from_json(const nlohmann::json& json, InstallerInspection& inspection) {
    Json::read(json, "sourcePath", inspection.sourcePath);
    Json::read(json, "kind", inspection.kind);
    Json::read(json, "items", inspection.items);
    Json::read(json, "warnings", inspection.warnings);
    Json::read(json, "trust", inspection.trust);
}

}  // namespace tarvik

std::size_t std::hash<tarvik::InstallerInspection>::operator()(
    const tarvik::InstallerInspection& inspection) const noexcept {
    return tarvik::FieldHash::of(inspection.sourcePath, inspection.kind, inspection.items, inspection.warnings,
                                 inspection.trust);
}
