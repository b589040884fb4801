#include "UninstallRun/UninstallCheck.h"

#include "Platform/Files/Files.h"
#include "Platform/Files/SystemCalls.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Text/PropertyList.h"

#include <fcntl.h>

namespace tarvik::UninstallCheck {

namespace {

using Files::ItemType;

/// Something is mounted there. Only a folder is asked: what a mount shows in a file's place is refused by the Trash.
bool isMountPoint(const fs::path& folder) {
    SystemCalls::ItemGuard guard;
    return SystemCalls::readGuard(AT_FDCWD, folder.c_str(), guard) == 0 && guard.isMountPoint;
}

/// As the scan of applications reads it.
std::optional<std::string> identifierOf(const fs::path& bundle) {
    return PropertyList::dictionaryAt(bundle / "Contents/Info.plist").text("CFBundleIdentifier");
}

/// Whether another application stands in the place of the bundle, or of the copy on a drive that its link or launcher
/// leads to. A bundle that names none, as a damaged one does, may well be the one that was planned.
bool isAnotherApplication(const AppRecord& app, const UninstallCandidate& candidate, const fs::path& path) {
    if (candidate.category != UninstallCategory::executable) return false;
    const auto& planned = candidate.path == app.bundlePath ? app.bundleIdentifier : candidate.seenIdentifier;
    const auto identifier = identifierOf(path);
    return identifier && planned && *identifier != *planned;
}

/// Whether the records of this program are in it, or it in them, by whatever spelling. What an installer has recorded
/// of an application goes with that.
bool holdsRecords(const Host& host, const fs::path& path, ItemType type) {
    const fs::path records = AppStorageNames::supportRoot(host);
    if (type == ItemType::folder && Files::isItemAtOrBelow(records, path)) return true;
    return Files::isItemAtOrBelow(path, records) &&
           !Files::isSameItem(Files::info(path.parent_path()), Files::info(AppStorageNames::sessionRoot(host)));
}

}  // namespace

std::optional<std::string> reasonToStay(const Host& host, const AppRecord& app, const UninstallCandidate& candidate) {
    const fs::path path = Files::standardized(candidate.path);
    const auto now = Files::info(path);
    if (!now) return std::nullopt;
    const bool isLink = now->type == ItemType::symbolicLink;
    if (candidate.seen) {
        if (isLink && candidate.seen->type != ItemType::symbolicLink) return "it has become a link";
        if (now->type != candidate.seen->type || !Files::isSameItem(now, candidate.seen))
            return now->type == ItemType::folder && isMountPoint(path) ? "something is mounted there"
                                                                       : "something else stands there by now";
    }
    if (now->type == ItemType::folder && isMountPoint(path)) return "something is mounted there";
    if (holdsRecords(host, path, now->type)) return "it holds the records of this program";
    // A link leads where it leads: only it goes.
    if (!isLink && isAnotherApplication(app, candidate, path)) return "it is another application by now";
    return std::nullopt;
}

}  // namespace tarvik::UninstallCheck
