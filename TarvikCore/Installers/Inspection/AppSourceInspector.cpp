#include "Installers/Inspection/AppSourceInspector.h"

#include "Discovery/AppScanner.h"
#include "Installers/Inspection/SourceItem.h"

namespace tarvik::AppSourceInspector {

InstallerInspection inspect(const Host& host, const fs::path& bundle) {
    InstallerInspection inspection{.sourcePath = bundle,
                                   .kind = InstallerKind::app,
                                   .items = {SourceItem::of(host, bundle, InstallerKind::app)},
                                   .warnings = {},
                                   .trust = {}};
    inspection.trust.status = TrustSummary::appBundle;
    const auto entry = AppScanner::metadataEntry(host, bundle);
    if (entry && entry->hasSystemExtension)
        inspection.warnings.emplace_back("App has system extensions; externalizing may break it.");
    return inspection;
}

}  // namespace tarvik::AppSourceInspector
