#pragma once

#include "Dedupe/AppDedupePlan.h"
#include "State/Lists/RecordListModel.h"

#include <string>
#include <vector>

/// How the bundles of one identifier, of which some can go, appear in a list.
namespace tarvik::DedupeGroupRow {

std::vector<Role<AppDedupeGroup>> roles();
std::string key(const AppDedupeGroup& group);

}  // namespace tarvik::DedupeGroupRow
