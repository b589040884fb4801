#pragma once

#include "Installers/Inspection/InstallerInspection.h"
#include "Installers/Planning/InstallerPlan.h"

#include <string>

/// The records of installers as TOML, for scripts. In texts backslashes and quotation marks are escaped and nothing
/// else is. Every text ends with a line feed. Pure.
namespace tarvik::TOMLFormatter {

/// Without the details of its trust.
std::string inspection(const InstallerInspection& inspection);
std::string plan(const InstallerPlan& plan);

}  // namespace tarvik::TOMLFormatter
