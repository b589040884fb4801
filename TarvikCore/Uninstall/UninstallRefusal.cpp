#include "Uninstall/UninstallRefusal.h"

#include "MovePlan/MoveRefusal.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Machine/TrashCan.h"

#include <fmt/format.h>

#include <algorithm>

namespace tarvik::UninstallRefusal {

namespace {

/// A Trash of the system's, or the folder into which goes what a Trash refuses.
bool isInTrash(const Host& host, const fs::path& place) {
    if (std::find(place.begin(), place.end(), ".TarvikTrash") != place.end()) return true;
    const auto folders = host.trash->foldersFor(place);
    return std::any_of(folders.begin(), folders.end(), [&](const fs::path& folder) {
        return Files::isAtOrBelow(place, Files::resolved(folder).value_or(folder));
    });
}

}  // namespace

std::optional<std::string> of(const Host& host, const fs::path& bundle) {
    const fs::path standardized = Files::standardized(bundle);
    const fs::path folder = standardized.parent_path();
    // The item itself may be a link, which goes alone.
    const fs::path place = Files::resolved(folder).value_or(folder) / standardized.filename();
    if (Files::isItemAtOrBelow(place, SystemFolders::system(host)))
        return fmt::format("Refusing to uninstall system app: {}", bundle.native());
    if (auto refusal = MoveRefusal::ofPlace(host, place)) return refusal;
    if (isInTrash(host, place)) return fmt::format("{} is in the Trash already.", standardized.filename().native());
    return std::nullopt;
}

}  // namespace tarvik::UninstallRefusal
