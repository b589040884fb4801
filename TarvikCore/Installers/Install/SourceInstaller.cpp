#include "Installers/Install/SourceInstaller.h"

#include "Installers/Inspection/InstallerKindDetector.h"
#include "Installers/Install/AppSourceInstaller.h"
#include "Installers/Install/DmgSourceInstaller.h"
#include "Installers/Install/InstallCancellation.h"
#include "Installers/Install/InstallLinePath.h"
#include "Installers/Install/PkgSourceInstaller.h"
#include "Installers/Install/ScriptSourceInstaller.h"
#include "Installers/Install/ZipSourceInstaller.h"
#include "Installers/Options/InstallerOptionCheck.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"

namespace tarvik::SourceInstaller {

std::vector<std::string> install(const Host& host, const fs::path& source, const InstallTerms& terms) {
    InstallCancellation::throwIfAsked(terms.cancellation);
    InstallerOptionCheck::requireSafe(terms.option);
    const fs::path path = Files::standardized(source);
    InstallLinePath::require(path);
    const auto installItem = [&](const fs::path& item) { return install(host, item, terms); };
    switch (InstallerKindDetector::detect(path)) {
        case InstallerKind::app:
            return AppSourceInstaller::install(host, path, terms);
        case InstallerKind::dmg:
            return DmgSourceInstaller::install(host, path, terms, installItem);
        case InstallerKind::zip:
            return ZipSourceInstaller::install(host, path, terms, installItem);
        case InstallerKind::pkg:
        case InstallerKind::mpkg:
            return PkgSourceInstaller::install(host, path, terms);
        case InstallerKind::script:
            return ScriptSourceInstaller::install(host, path, terms);
        case InstallerKind::unknown:
            break;
    }
    throw Failure("install", 1, "Unsupported source type.");
}

}  // namespace tarvik::SourceInstaller
