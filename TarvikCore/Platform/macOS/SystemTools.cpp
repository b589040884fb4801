#include "Platform/ProgramLocation.h"
#include "Platform/ToolTable.h"

namespace tarvik {

ToolTable systemTools() {
    return {.ditto = "/usr/bin/ditto",
            .find = "/usr/bin/find",
            .codesign = "/usr/bin/codesign",
            .xcrun = "/usr/bin/xcrun",
            .spctl = "/usr/sbin/spctl",
            .ps = "/bin/ps",
            .tmutil = "/usr/bin/tmutil",
            .lsregister =
                "/System/Library/Frameworks/CoreServices.framework/Frameworks/LaunchServices.framework/"
                "Support/lsregister",
            .externalAppLauncher = ProgramLocation::folder() / "external-app-launcher"};
}

}  // namespace tarvik
