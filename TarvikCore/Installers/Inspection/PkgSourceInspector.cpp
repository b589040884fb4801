#include "Installers/Inspection/PkgSourceInspector.h"

#include "Installers/Inspection/InstallerKindDetector.h"
#include "Installers/Inspection/PackageTrustInspector.h"
#include "Installers/Inspection/SourceItem.h"

namespace tarvik::PkgSourceInspector {

InstallerInspection inspect(const Host& host, const fs::path& package) {
    const InstallerKind kind = InstallerKindDetector::detect(package);
    InstallerInspection inspection{.sourcePath = package,
                                   .kind = kind,
                                   .items = {SourceItem::of(host, package, kind)},
                                   .warnings = {},
                                   .trust = PackageTrustInspector::inspect(host, package)};
    const TrustSummary& trust = inspection.trust;
    auto& warnings = inspection.warnings;
    if (trust.status != TrustSummary::trusted) warnings.emplace_back("Package signature is not trusted.");
    if (trust.hasScripts) warnings.emplace_back("Package contains install scripts.");
    if (trust.hasPrivilegedPayload) warnings.emplace_back("Package may install privileged files.");
    return inspection;
}

}  // namespace tarvik::PkgSourceInspector
