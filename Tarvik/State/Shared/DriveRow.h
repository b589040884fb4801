#pragma once

#include "Platform/Storage/DriveInfo.h"
#include "State/Lists/RecordListModel.h"

#include <vector>

/// How a drive appears in a list.
namespace tarvik::DriveRow {

std::vector<Role<DriveInfo>> roles();
std::string key(const DriveInfo& drive);

}  // namespace tarvik::DriveRow
