#pragma once

#include "Discovery/SymlinkEntry.h"
#include "State/Lists/RecordListModel.h"

#include <string>
#include <vector>

/// How a link that a move has left appears in a list.
namespace tarvik::SymlinkRow {

std::vector<Role<SymlinkEntry>> roles();
std::string key(const SymlinkEntry& link);

}  // namespace tarvik::SymlinkRow
