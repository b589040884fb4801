#include "Health/BundleState.h"

#include "Platform/Files/Files.h"
#include "Platform/Files/ListedFolder.h"

namespace tarvik {

BundleState bundleState(const fs::path& bundle) {
    const fs::path programs = bundle / "Contents/MacOS";
    if (Files::isMissing(bundle / "Contents/Info.plist")) return BundleState::withoutList;
    if (Files::isMissing(programs)) return BundleState::withoutPrograms;
    const auto info = Files::infoFollowingLinks(programs);
    if (!info) return BundleState::unreadable;
    if (info->type != Files::ItemType::folder) return BundleState::withoutPrograms;
    if (!ListedFolder::at(programs)) return BundleState::unlistable;
    return Files::names(programs).empty() ? BundleState::withoutPrograms : BundleState::whole;
}

}  // namespace tarvik
