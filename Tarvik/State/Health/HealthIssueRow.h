#pragma once

#include "Health/HealthIssue.h"
#include "State/Lists/RecordListModel.h"

#include <QString>

#include <string>
#include <vector>

/// How a finding of the health check appears in a list.
namespace tarvik::HealthIssueRow {

std::vector<Role<HealthIssue>> roles();
std::string key(const HealthIssue& issue);

/// The name of the tone that stands for how bad it is; see `Theme`.
QString toneOf(HealthIssue::Kind kind);
/// The icon of its section.
QString iconOf(HealthIssue::Kind kind);

}  // namespace tarvik::HealthIssueRow
