#pragma once

#include "Installers/Inspection/InstallerInspection.h"
#include "Installers/Options/InstallerOption.h"
#include "Installers/Planning/InstallerPlan.h"

#include <string>
#include <vector>

/// The records of installers as lines with tabs between the fields, for scripts: the first field tells what a line is.
/// Fields are written as they are: a tab or a line break in one breaks its row, and an action has tabs of its own.
/// Every text ends with a line feed. Pure.
namespace tarvik::TSVFormatter {

std::string options(const std::vector<InstallerOption>& options);
/// Without what is known of its trust.
std::string inspection(const InstallerInspection& inspection);
std::string plan(const InstallerPlan& plan);

}  // namespace tarvik::TSVFormatter
