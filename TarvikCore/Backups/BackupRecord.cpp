#include "Backups/BackupRecord.h"

#include "Platform/Basics/FieldHash.h"
#include "Platform/Text/Json.h"

namespace tarvik {

void to_json(nlohmann::json& json, const BackupRecord& record) {
    Json::write(json, "id", record.id);
    Json::write(json, "rootPath", record.rootPath);
    Json::writeReferenceDate(json, "createdAt", record.createdAt);
    Json::write(json, "sourceFileCount", record.sourceFileCount);
    Json::write(json, "backupFileCount", record.backupFileCount);
}

void from_json(const nlohmann::json& json, BackupRecord& record) {
    Json::read(json, "id", record.id);
    Json::read(json, "rootPath", record.rootPath);
    Json::readReferenceDate(json, "createdAt", record.createdAt);
    Json::read(json, "sourceFileCount", record.sourceFileCount);
    Json::read(json, "backupFileCount", record.backupFileCount);
}

}  // namespace tarvik

std::size_t std::hash<tarvik::BackupRecord>::operator()(const tarvik::BackupRecord& record) const noexcept {
    return tarvik::FieldHash::of(record.id, record.rootPath, record.createdAt, record.sourceFileCount,
                                 record.backupFileCount);
}
