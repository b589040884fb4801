#pragma once

#include "Installers/Sessions/InstallerSession.h"

#include <string>
#include <vector>

/// What it would take to undo the run of an installer, as lines for a person to read. Pure; nothing carries them out.
namespace tarvik::UninstallPlanner {

/// "trash\tPATH" for each path that the run changed, what is in a folder before the folder; then
/// "forget-receipt\tIDENTIFIER" for each new receipt.
std::vector<std::string> plan(const InstallerSession& session);

}  // namespace tarvik::UninstallPlanner
