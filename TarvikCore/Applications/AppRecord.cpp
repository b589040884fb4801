#include "Applications/AppRecord.h"

#include "Platform/Basics/FieldHash.h"
#include "Platform/Text/Json.h"

#include <utility>

namespace tarvik {

namespace {

AppRecordKind kindOf(const nlohmann::json& json) {
    const auto kind = appRecordKindOf(Json::decoded<std::string>(json));
    if (!kind) Json::refuse("a kind of application");
    return *kind;
}

/// The fields that are written as they are, each under its own name.
template <typename Record, typename Visit>
void forEachPlainField(Record& record, const Visit& visit) {
    visit("bundlePath", record.bundlePath);
    visit("displayName", record.displayName);
    visit("bundleIdentifier", record.bundleIdentifier);
    visit("version", record.version);
    visit("executableName", record.executableName);
    visit("developer", record.developer);
    visit("isSymlink", record.isSymlink);
    visit("symlinkTarget", record.symlinkTarget);
    visit("isMacAppStore", record.isMacAppStore);
    visit("hasLoginItems", record.hasLoginItems);
    visit("hasSystemExtension", record.hasSystemExtension);
    visit("isTarvikLauncher", record.isTarvikLauncher);
    visit("externalTargetPath", record.externalTargetPath);
    visit("bundleSizeBytes", record.bundleSizeBytes);
    visit("footprintBytes", record.footprintBytes);
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
    forEachPlainField(record, [&](const char* key, const auto& value) { Json::write(json, key, value); });
    Json::write(json, "kind", std::string(textOf(record.kind)));
    if (record.modifiedAt) Json::writeReferenceDate(json, "modifiedAt", *record.modifiedAt);
}

void from_json(const nlohmann::json& json, AppRecord& record) {
    record.id = Json::decoded<fs::path>(Json::member(json, "id")).native();
    forEachPlainField(record, [&](const char* key, auto& value) { Json::read(json, key, value); });
    record.kind = kindOf(Json::member(json, "kind"));
    record.modifiedAt.reset();
    if (Json::optionalMember(json, "modifiedAt"))
        Json::readReferenceDate(json, "modifiedAt", record.modifiedAt.emplace());
}

}  // namespace tarvik

std::size_t std::hash<tarvik::AppRecord>::operator()(const tarvik::AppRecord& record) const noexcept {
    return tarvik::FieldHash::of(record.id, record.bundlePath, record.displayName, record.bundleIdentifier,
                                 record.version, record.executableName, record.developer, record.kind, record.isSymlink,
                                 record.symlinkTarget, record.isMacAppStore, record.hasLoginItems,
                                 record.hasSystemExtension, record.isTarvikLauncher, record.externalTargetPath,
                                 record.modifiedAt, record.bundleSizeBytes, record.footprintBytes);
}
