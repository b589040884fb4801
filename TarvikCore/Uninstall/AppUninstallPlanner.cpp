#include "Uninstall/AppUninstallPlanner.h"

namespace tarvik::AppUninstallPlanner {

bool effectiveSelected(const UninstallCandidate& candidate, const AppRecord& app, const UninstallSelection& selection) {
    if (candidate.category == UninstallCategory::executable) {
        if (candidate.path == app.bundlePath) return true;
        return candidate.path == app.externalTargetPath ? selection.includeExternalTarget : candidate.defaultSelected;
    }
    return selection.includes(candidate.category).value_or(true) && candidate.defaultSelected;
}

}  // namespace tarvik::AppUninstallPlanner
