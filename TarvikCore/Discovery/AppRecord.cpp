#include "Discovery/AppRecord.h"

#include "Platform/FieldHash.h"
#include "Platform/Json.h"

#include <utility>

namespace tarvik {

namespace {

AppRecordKind kindOf(const nlohmann::json& json) {
    const auto kind = appRecordKindOf(Json::decoded<std::string>(json));
    if (!kind) Json::refuse("a kind of application");
    return *kind;
}

}  // namespace

std::int64_t AppRecord::displaySizeBytes() const {
    return footprintBytes > 0 ? footprintBytes : bundleSizeBytes;
}

int AppRecord::permissionCount() const {
    return int{isMacAppStore} + int{hasLoginItems} + int{hasSystemExtension};
}

AppRecord AppRecord::withDisplayName(std::string name) const {
    AppRecord copy = *this;
    copy.displayName = std::move(name);
    return copy;
}

AppRecord AppRecord::withBundleSize(std::int64_t bytes) const {
    AppRecord copy = *this;
    copy.bundleSizeBytes = bytes;
    return copy;
}

AppRecord AppRecord::withFootprint(std::int64_t bytes) const {
    AppRecord copy = *this;
    copy.footprintBytes = bytes;
    return copy;
}

void to_json(nlohmann::json& json, const AppRecord& record) {
    Json::write(json, "id", fs::path(record.id));  // A path's bytes, which need not be UTF-8.
    Json::write(json, "bundlePath", record.bundlePath);
    Json::write(json, "displayName", record.displayName);
    Json::write(json, "bundleIdentifier", record.bundleIdentifier);
    Json::write(json, "version", record.version);
    Json::write(json, "executableName", record.executableName);
    Json::write(json, "developer", record.developer);
    Json::write(json, "kind", std::string(textOf(record.kind)));
    Json::write(json, "isSymlink", record.isSymlink);
    Json::write(json, "symlinkTarget", record.symlinkTarget);
    Json::write(json, "isMacAppStore", record.isMacAppStore);
    Json::write(json, "hasLoginItems", record.hasLoginItems);
    Json::write(json, "hasSystemExtension", record.hasSystemExtension);
    Json::write(json, "isTarvikLauncher", record.isTarvikLauncher);
    Json::write(json, "externalTargetPath", record.externalTargetPath);
    if (record.modifiedAt) Json::writeReferenceDate(json, "modifiedAt", *record.modifiedAt);
    Json::write(json, "bundleSizeBytes", record.bundleSizeBytes);
    Json::write(json, "footprintBytes", record.footprintBytes);
}

void from_json(const nlohmann::json& json, AppRecord& record) {
    record.id = Json::decoded<fs::path>(Json::member(json, "id")).native();
    Json::read(json, "bundlePath", record.bundlePath);
    Json::read(json, "displayName", record.displayName);
    Json::read(json, "bundleIdentifier", record.bundleIdentifier);
    Json::read(json, "version", record.version);
    Json::read(json, "executableName", record.executableName);
    Json::read(json, "developer", record.developer);
    record.kind = kindOf(Json::member(json, "kind"));
    Json::read(json, "isSymlink", record.isSymlink);
    Json::read(json, "symlinkTarget", record.symlinkTarget);
    Json::read(json, "isMacAppStore", record.isMacAppStore);
    Json::read(json, "hasLoginItems", record.hasLoginItems);
    Json::read(json, "hasSystemExtension", record.hasSystemExtension);
    Json::read(json, "isTarvikLauncher", record.isTarvikLauncher);
    Json::read(json, "externalTargetPath", record.externalTargetPath);
    record.modifiedAt.reset();
    if (Json::optionalMember(json, "modifiedAt"))
        Json::readReferenceDate(json, "modifiedAt", record.modifiedAt.emplace());
    Json::read(json, "bundleSizeBytes", record.bundleSizeBytes);
    Json::read(json, "footprintBytes", record.footprintBytes);
}

}  // namespace tarvik

std::size_t std::hash<tarvik::AppRecord>::operator()(const tarvik::AppRecord& record) const noexcept {
    return tarvik::FieldHash::of(record.id, record.bundlePath, record.displayName, record.bundleIdentifier,
                                 record.version, record.executableName, record.developer, record.kind, record.isSymlink,
                                 record.symlinkTarget, record.isMacAppStore, record.hasLoginItems,
                                 record.hasSystemExtension, record.isTarvikLauncher, record.externalTargetPath,
                                 record.modifiedAt, record.bundleSizeBytes, record.footprintBytes);
}
