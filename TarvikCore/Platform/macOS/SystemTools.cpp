#include "Platform/ToolTable.h"

namespace tarvik {

ToolTable systemTools() {
    return {.ditto = "/usr/bin/ditto",
            .find = "/usr/bin/find",
            .codesign = "/usr/bin/codesign",
            .xcrun = "/usr/bin/xcrun",
            .spctl = "/usr/sbin/spctl",
            .ps = "/bin/ps",
            .tmutil = "/usr/bin/tmutil"};
}

}  // namespace tarvik
