#include "Installers/Inspection/ContainedItems.h"

#include <exception>

namespace tarvik::ContainedItems {

InstallerInspection inspection(const fs::path& source, InstallerKind kind, std::string_view status,
                               const std::function<std::vector<InstallableItem>()>& look) {
    InstallerInspection inspection{.sourcePath = source, .kind = kind, .items = {}, .warnings = {}, .trust = {}};
    try {
        inspection.items = look();
        inspection.trust.status = status;
        if (inspection.items.empty()) inspection.warnings.emplace_back("No .app or .pkg found.");
    } catch (const std::exception& failure) {
        inspection.trust.status = TrustSummary::inspectFailed;
        inspection.warnings.emplace_back(failure.what());
    }
    return inspection;
}

}  // namespace tarvik::ContainedItems
