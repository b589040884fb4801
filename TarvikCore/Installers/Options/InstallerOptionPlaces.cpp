#include "Installers/Options/InstallerOptionPlaces.h"

#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/SystemFolders.h"

namespace tarvik::InstallerOptionPlaces {

fs::path applicationsOn(const fs::path& drive, const InstallerOption& option) {
    // An absolute path would take the place of the drive's.
    return drive / fs::path(option.externalRootName).relative_path() / AppStorageNames::apps;
}

fs::path launchers(const Host& host, const InstallerOption& option) {
    return SystemFolders::below(host, option.applicationLinkRoot);
}

}  // namespace tarvik::InstallerOptionPlaces
