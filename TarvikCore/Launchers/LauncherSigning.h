#pragma once

#include "Installers/Reporting/InstallerRunReporter.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <chrono>

/// Makes the system accept a launcher that was made or changed.
namespace tarvik::LauncherSigning {

/// How long each of the tools may take.
inline constexpr std::chrono::seconds toolTimeout{60};

/// Signs the bundle without anybody's key. Logs "signed-launcher" or "sign-launcher-warning". Blocks for one run of a
/// tool; never fails.
void sign(const Host& host, const fs::path& launcher, const InstallerRunReporter& reporter);
/// Tells the system of it, where that keeps a register. Logs "registered-launcher". Blocks for one run of a tool; never
/// fails.
void enter(const Host& host, const fs::path& launcher, const InstallerRunReporter& reporter);

}  // namespace tarvik::LauncherSigning
