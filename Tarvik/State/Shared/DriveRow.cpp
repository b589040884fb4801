#include "State/Shared/DriveRow.h"

#include "Platform/Text/Text.h"
#include "State/Lists/ScreenText.h"

namespace tarvik::DriveRow {

std::vector<Role<DriveInfo>> roles() {
    return {
        {"driveId", [](const DriveInfo& drive) -> QVariant { return uniqueText(drive.id); }},
        {"name", [](const DriveInfo& drive) -> QVariant { return screenText(drive.name); }},
        {"mountPath", [](const DriveInfo& drive) -> QVariant { return screenPath(drive.mountPath); }},
        {"freeText", [](const DriveInfo& drive) -> QVariant { return screenText(Text::byteCount(drive.freeBytes)); }},
        {"totalText", [](const DriveInfo& drive) -> QVariant { return screenText(Text::byteCount(drive.totalBytes)); }},
        {"usedFraction",
         [](const DriveInfo& drive) -> QVariant {
             if (drive.totalBytes < 1) return 0.0;
             return std::clamp(static_cast<double>(drive.usedBytes()) / static_cast<double>(drive.totalBytes), 0.0,
                               1.0);
         }},
        {"isInternal", [](const DriveInfo& drive) -> QVariant { return drive.isInternal; }},
        {"isWritable", [](const DriveInfo& drive) -> QVariant { return drive.isWritable; }},
        {"filesystem", [](const DriveInfo& drive) -> QVariant { return screenText(drive.filesystem.value_or("")); }},
    };
}

std::string key(const DriveInfo& drive) {
    return drive.id;
}

}  // namespace tarvik::DriveRow
