#pragma once

#include "Applications/AppRecord.h"
#include "Uninstall/AppUninstallPlan.h"
#include "UninstallRun/AppUninstallSession.h"

#include <string>
#include <vector>

/// The records of uninstalling as TOML, for scripts. In texts backslashes and quotation marks are escaped and nothing
/// else is. Every text ends with a line feed. Pure.
namespace tarvik::UninstallTOMLFormatter {

std::string apps(const std::vector<AppRecord>& apps);
std::string inspection(const AppRecord& app);
std::string plan(const AppUninstallPlan& plan);
std::string session(const AppUninstallSession& session);

}  // namespace tarvik::UninstallTOMLFormatter
