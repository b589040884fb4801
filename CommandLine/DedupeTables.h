#pragma once

#include "CommandLine/Output/Records.h"
#include "Dedupe/AppDedupePlan.h"

#include <string>
#include <vector>

/// How the command writes duplicate launchers, and what became of them. Pure.
namespace tarvik::CommandLine::DedupeTables {

/// The figures; of each group what stays, what goes, where, how large, and why.
std::string human(const AppDedupePlan& plan);
/// A line for each bundle of a group, those that neither are kept for it nor go too.
std::string tsv(const AppDedupePlan& plan);
/// The figures, and a table for each of these.
std::string toml(const AppDedupePlan& plan);

/// A line for each launcher that has gone, with its place in the Trash.
std::string human(const AppDedupeRunResult& result);
/// A record for each launcher that was to go.
std::string tsv(const AppDedupeRunResult& result);
std::string toml(const AppDedupeRunResult& result);

}  // namespace tarvik::CommandLine::DedupeTables
