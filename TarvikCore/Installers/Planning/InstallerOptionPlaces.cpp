#include "Installers/Planning/InstallerOptionPlaces.h"

#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/SystemFolders.h"

namespace tarvik::InstallerOptionPlaces {

fs::path applicationsOn(const fs::path& drive, const InstallerOption& option) {
    return drive / option.externalRootName / AppStorageNames::apps;
}

fs::path launchers(const Host& host, const InstallerOption& option) {
    return SystemFolders::below(host, option.applicationLinkRoot);
}

}  // namespace tarvik::InstallerOptionPlaces
