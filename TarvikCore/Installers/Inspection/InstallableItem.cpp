#include "Installers/Inspection/InstallableItem.h"

#include "Platform/Basics/FieldHash.h"
#include "Platform/Text/Json.h"

namespace tarvik {

namespace {

// What is made of a path may hold any bytes, as the path itself.
std::string textOfBytes(const std::string& bytes) {
    return Json::textOfPath(bytes);
}

std::string bytesOf(const nlohmann::json& json, const char* key) {
    return Json::decoded<fs::path>(Json::member(json, key)).native();
}

}  // namespace

void to_json(nlohmann::json& json, const InstallableItem& item) {
    Json::write(json, "id", textOfBytes(item.id));
    Json::write(json, "kind", item.kind);
    Json::write(json, "path", item.path);
    Json::write(json, "label", textOfBytes(item.label));
    Json::write(json, "sizeBytes", item.sizeBytes);
}

void from_json(const nlohmann::json& json, InstallableItem& item) {
    item.id = bytesOf(json, "id");
    Json::read(json, "kind", item.kind);
    Json::read(json, "path", item.path);
    item.label = bytesOf(json, "label");
    Json::read(json, "sizeBytes", item.sizeBytes);
}

}  // namespace tarvik

std::size_t std::hash<tarvik::InstallableItem>::operator()(const tarvik::InstallableItem& item) const noexcept {
    return tarvik::FieldHash::of(item.id, item.kind, item.path, item.label, item.sizeBytes);
}
