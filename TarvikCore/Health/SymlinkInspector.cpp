#include "Health/SymlinkInspector.h"

#include "Health/BundleState.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/SilentVolumes.h"

#include <utility>

namespace tarvik::SymlinkInspector {

HealthIssue inspect(const Host& host, const fs::path& location, const fs::path& target) {
    using enum HealthIssue::Kind;
    const auto issue = [&](HealthIssue::Kind kind, std::string detail) {
        return HealthIssue{.kind = kind, .location = location, .target = target, .detail = std::move(detail)};
    };
    if (SilentVolumes::hold(host, target) || Files::isMissing(target))
        return issue(dangling, "Target does not exist. The external drive may be unmounted, or the file was deleted.");
    switch (bundleState(target)) {
        case BundleState::withoutList:
            return issue(empty, "Bundle directory exists but has no Contents/Info.plist. App is unlaunchable.");
        case BundleState::withoutPrograms:
        case BundleState::unlistable:  // Nobody can start what cannot be listed; its repair tells that it may be whole.
            return issue(corrupted, "Bundle has Info.plist but no executable in Contents/MacOS/.");
        case BundleState::unreadable:  // What may not be looked at is not broken.
        case BundleState::whole:
            break;
    }
    return issue(healthy, {});
}

}  // namespace tarvik::SymlinkInspector
