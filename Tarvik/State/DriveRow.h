#pragma once

#include "Platform/DriveInfo.h"
#include "State/RecordListModel.h"

#include <vector>

/// How a drive appears in a list.
namespace tarvik::DriveRow {

std::vector<Role<DriveInfo>> roles();
std::string key(const DriveInfo& drive);
/// Whether something can be moved to the drive: it is writable and not the boot volume.
bool isTarget(const DriveInfo& drive);

}  // namespace tarvik::DriveRow
