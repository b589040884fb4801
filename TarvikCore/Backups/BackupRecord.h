#pragma once

#include "Platform/Basics/Path.h"

#include <nlohmann/json_fwd.hpp>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace tarvik {

/// One backup on a drive, as the record in its folder tells of it.
struct BackupRecord {
    /// The local time at which it was begun, "20261115_174543": also the name of its folder, and what tells backups of
    /// one drive apart.
    std::string id;
    /// The backup's folder, under the mount path that the drive had.
    fs::path rootPath;
    /// When it was complete.
    std::chrono::system_clock::time_point createdAt;
    /// What is no folder inside all its sources, and inside the copies. A source that is no folder itself adds nothing.
    std::int64_t sourceFileCount = 0;
    std::int64_t backupFileCount = 0;

    bool operator==(const BackupRecord&) const = default;
};

/// One key a field, of the field's name; the date is a number. @throws Failure on reading a record without a key, or
/// with a value of the wrong type.
void to_json(nlohmann::json& json, const BackupRecord& record);
void from_json(const nlohmann::json& json, BackupRecord& record);

}  // namespace tarvik

template <>
struct std::hash<tarvik::BackupRecord> {
    std::size_t operator()(const tarvik::BackupRecord& record) const noexcept;
};
