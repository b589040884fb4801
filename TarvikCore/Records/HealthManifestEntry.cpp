#include "Records/HealthManifestEntry.h"

#include "Platform/Basics/FieldHash.h"
#include "Platform/Text/Json.h"

namespace tarvik {

void to_json(nlohmann::json& json, const HealthManifestEntry& entry) {
    Json::write(json, "sourcePath", entry.sourcePath);
    Json::write(json, "destinationPath", entry.destinationPath);
    Json::write(json, "bundleIdentifier", entry.bundleIdentifier);
    Json::write(json, "sizeBytes", entry.sizeBytes);
    Json::writeIsoDate(json, "movedAt", entry.movedAt);
}

void from_json(const nlohmann::json& json, HealthManifestEntry& entry) {
    Json::read(json, "sourcePath", entry.sourcePath);
    Json::read(json, "destinationPath", entry.destinationPath);
    Json::read(json, "bundleIdentifier", entry.bundleIdentifier);
    Json::read(json, "sizeBytes", entry.sizeBytes);
    Json::readIsoDate(json, "movedAt", entry.movedAt);
}

}  // namespace tarvik

std::size_t std::hash<tarvik::HealthManifestEntry>::operator()(
    const tarvik::HealthManifestEntry& entry) const noexcept {
    return tarvik::FieldHash::of(entry.sourcePath, entry.destinationPath, entry.bundleIdentifier, entry.sizeBytes,
                                 entry.movedAt);
}
