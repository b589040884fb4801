#pragma once

#include "CommandLine/Records.h"
#include "Health/HealthReport.h"

#include <string>

/// How the command writes a health report. Pure.
namespace tarvik::CommandLine::HealthTexts {

/// The figures, the problems in their sections, the largest healthy links.
std::string human(const HealthReport& report);
/// A line for each finding, healthy ones too.
std::string tsv(const HealthReport& report);
/// The figures, and a table for each finding.
std::string toml(const HealthReport& report);

}  // namespace tarvik::CommandLine::HealthTexts
