#include "Installers/Inspection/InstallerInspector.h"

#include "Installers/Inspection/AppSourceInspector.h"
#include "Installers/Inspection/DmgSourceInspector.h"
#include "Installers/Inspection/InstallerKindDetector.h"
#include "Installers/Inspection/PkgSourceInspector.h"
#include "Installers/Inspection/ScriptSourceInspector.h"
#include "Installers/Inspection/ZipSourceInspector.h"

namespace tarvik::InstallerInspector {

namespace {

InstallerInspection unsupported(const fs::path& source) {
    InstallerInspection inspection;
    inspection.sourcePath = source;
    inspection.warnings.emplace_back("Unsupported source type.");
    inspection.trust.status = TrustSummary::unsupported;
    return inspection;
}

}  // namespace

InstallerInspection inspect(const Host& host, const fs::path& source) {
    switch (InstallerKindDetector::detect(source)) {
        case InstallerKind::app:
            return AppSourceInspector::inspect(host, source);
        case InstallerKind::dmg:
            return DmgSourceInspector::inspect(host, source);
        case InstallerKind::zip:
            return ZipSourceInspector::inspect(host, source);
        case InstallerKind::pkg:
        case InstallerKind::mpkg:
            return PkgSourceInspector::inspect(host, source);
        case InstallerKind::script:
            return ScriptSourceInspector::inspect(host, source);
        case InstallerKind::unknown:
            break;
    }
    return unsupported(source);
}

}  // namespace tarvik::InstallerInspector
