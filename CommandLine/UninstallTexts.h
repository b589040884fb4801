#pragma once

#include "Applications/AppRecord.h"
#include "Platform/Basics/Path.h"
#include "Uninstall/AppUninstallPlan.h"
#include "UninstallRun/AppUninstallSession.h"
#include "UninstallRun/UninstallUndo.h"

#include <set>
#include <string>
#include <utility>
#include <vector>

/// Plans and records of uninstalls as text for eyes. `home` is the folder that is written "~". Pure.
namespace tarvik::CommandLine::UninstallTexts {

/// A line for each application, with titles; the applications of one vendor below its name.
std::string apps(const std::vector<AppRecord>& apps, const fs::path& home);
/// All about one.
std::string app(const AppRecord& app);

/// The plan in its sections, with what of it goes marked, its warnings, and the sum.
std::string plan(const AppUninstallPlan& plan, const std::set<std::string>& selectedPaths, const fs::path& home);

/// One uninstall of the past, and how it stands with each of its items now.
using Past = std::pair<AppUninstallSession, std::vector<UninstallUndo::Item>>;
/// A line for each, with titles.
std::string sessions(const std::vector<Past>& sessions);
/// All about one.
std::string session(const Past& session, const fs::path& home);

}  // namespace tarvik::CommandLine::UninstallTexts
