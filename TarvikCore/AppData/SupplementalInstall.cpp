#include "AppData/SupplementalInstall.h"

#include "Platform/Files/Files.h"
#include "Platform/Machine/SystemFolders.h"

#include <string>

namespace tarvik {

bool SupplementalInstall::matches(const Host& host, const fs::path& bundlePath) {
    const std::string& path = bundlePath.native();
    if (path.starts_with(SystemFolders::applications(host).native() + "/") ||
        path.starts_with(SystemFolders::below(host, "/System/Applications").native()) ||
        path.starts_with((host.home / "Applications/").native()))
        return false;
    // The host's own root may stand in such a folder too: only what lies below it counts.
    const bool isOnHost = host.root != "/" && Files::isAtOrBelow(bundlePath, host.root);
    return path.find("/Library/Application Support/", isOnHost ? host.root.native().size() : 0) != path.npos;
}

}  // namespace tarvik
