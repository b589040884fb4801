#include "Platform/Machine/AppStorageNames.h"

namespace tarvik {

fs::path AppStorageNames::externalRootOn(const fs::path& mountPath) {
    return mountPath / externalRoot;
}

fs::path AppStorageNames::appsRootOn(const fs::path& mountPath) {
    return externalRootOn(mountPath) / apps;
}

fs::path AppStorageNames::dataRootOn(const fs::path& mountPath) {
    return externalRootOn(mountPath) / data;
}

fs::path AppStorageNames::foldersRootOn(const fs::path& mountPath) {
    return externalRootOn(mountPath) / folders;
}

fs::path AppStorageNames::backupsRootOn(const fs::path& mountPath) {
    return mountPath / backupsRoot;
}

fs::path AppStorageNames::supportRoot(const Host& host) {
    return host.home / "Library/Application Support/Tarvik";
}

fs::path AppStorageNames::sessionRoot(const Host& host) {
    return supportRoot(host) / installerSessions;
}

fs::path AppStorageNames::userInstallerOptionsRoot(const Host& host) {
    return supportRoot(host) / installerOptions;
}

fs::path AppStorageNames::uninstallSessionRoot(const Host& host) {
    return supportRoot(host) / uninstallSessions;
}

}  // namespace tarvik
