#pragma once

#include "Installers/Options/InstallerOption.h"
#include "Installers/Planning/InstallerPlan.h"
#include "Platform/Machine/Host.h"

/// Plans the run of an installer, and changes nothing.
namespace tarvik::InstallerPlanner {

/// Inspects the source anew (`InstallerInspector`, which tells what `source` must be). `targetDrive` is a mount path.
/// An option that is not safe gives a plan all the same: whoever shows one asks `InstallerOptionCheck` first. Never
/// fails: a source that cannot be looked into has warnings and no actions. Blocks as long as the inspection, and for
/// one or two runs of a tool (`SpotlightHealthCheck`); any thread.
InstallerPlan plan(const Host& host, const fs::path& source, const InstallerOption& option,
                   const fs::path& targetDrive);

}  // namespace tarvik::InstallerPlanner
