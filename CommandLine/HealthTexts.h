#pragma once

#include "CommandLine/Output/Records.h"
#include "Health/HealthReport.h"
#include "HealthRepair/HealthRepairStrategy.h"

#include <functional>
#include <string>
#include <vector>

/// How the command writes a health report. Pure.
namespace tarvik::CommandLine::HealthTexts {

using RepairsOf = std::function<std::vector<HealthRepairStrategy>(const HealthIssue&)>;

/// The figures, the problems in their sections, each with the names of its repairs, the largest healthy links.
std::string human(const HealthReport& report, const RepairsOf& repairsOf);
/// A line for each finding, healthy ones too.
std::string tsv(const HealthReport& report);
/// The figures, and a table for each finding.
std::string toml(const HealthReport& report);

}  // namespace tarvik::CommandLine::HealthTexts
