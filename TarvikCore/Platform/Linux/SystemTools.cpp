#include "Platform/ProgramLocation.h"
#include "Platform/ToolTable.h"

namespace tarvik {

ToolTable systemTools() {
    const fs::path standIns = ProgramLocation::folder() / "stand-ins";
    return {.ditto = standIns / "ditto",
            .find = "/usr/bin/find",
            .codesign = standIns / "codesign",
            .xcrun = standIns / "xcrun",
            .spctl = standIns / "spctl",
            .ps = "/bin/ps",
            .tmutil = standIns / "tmutil",
            .lsregister = standIns / "lsregister",
            .externalAppLauncher = ProgramLocation::folder() / "external-app-launcher"};
}

}  // namespace tarvik
