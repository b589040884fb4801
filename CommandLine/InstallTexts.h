#pragma once

#include "Installers/Inspection/InstallerInspection.h"
#include "Installers/Options/InstallerOption.h"
#include "Installers/Planning/InstallerPlan.h"
#include "Platform/Basics/Path.h"
#include "Platform/Storage/DriveInfo.h"

#include <string>
#include <vector>

/// What is known of installers as text for eyes. Pure.
namespace tarvik::CommandLine::InstallTexts {

/// All about a source, with each line that tells of its trust. `temporary` is the folder that archives are unpacked in:
/// what lay there is gone, and is named by its path in the archive.
std::string inspection(const InstallerInspection& inspection, const fs::path& temporary);

/// A line for each option, with titles.
std::string options(const std::vector<InstallerOption>& options);

/// The steps of a plan, its warnings, and what it needs of the drive.
std::string plan(const InstallerPlan& plan, const InstallerOption& option, const DriveInfo& drive);

}  // namespace tarvik::CommandLine::InstallTexts
