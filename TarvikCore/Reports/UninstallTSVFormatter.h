#pragma once

#include "Applications/AppRecord.h"
#include "Uninstall/AppUninstallPlan.h"
#include "UninstallRun/AppUninstallSession.h"

#include <string>
#include <vector>

/// The records of uninstalling as lines with tabs between the fields, for scripts. Fields are written as they are: a
/// tab or a line break in one breaks its row. Every text ends with a line feed. Pure.
namespace tarvik::UninstallTSVFormatter {

std::string apps(const std::vector<AppRecord>& apps);
std::string inspection(const AppRecord& app);
std::string plan(const AppUninstallPlan& plan);
std::string sessions(const std::vector<AppUninstallSession>& sessions);

}  // namespace tarvik::UninstallTSVFormatter
