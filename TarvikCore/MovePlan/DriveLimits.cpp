#include "MovePlan/DriveLimits.h"

#include "Platform/Files/Files.h"
#include "Platform/Files/TreeWalk.h"
#include "Platform/Storage/SizeCalculator.h"

#include <fmt/format.h>

namespace tarvik::DriveLimits {

namespace {

/// A Mac tells a figure for every volume; no file comes to those of most.
constexpr std::int64_t farAway = std::int64_t{1} << 44;

bool hasLimitOfLinks(const DriveInfo& drive) {
    return drive.keepsLinks == false;
}

bool hasLimitOfSize(const DriveInfo& drive) {
    return drive.largestFile && *drive.largestFile > 0 && *drive.largestFile < farAway;
}

/// "exFAT", or what stands for it in a sentence.
std::string formatOf(const DriveInfo& drive) {
    return drive.filesystem.value_or("its file system");
}

}  // namespace

Needs Needs::of(const fs::path& item) {
    Needs needs;
    const auto info = Files::info(item);
    if (!info) return needs;
    if (info->type == Files::ItemType::symbolicLink) needs.link = item;
    if (info->type == Files::ItemType::regular) needs = {std::nullopt, item, info->size};
    if (info->type != Files::ItemType::folder) return needs;
    TreeWalk walk(item, {});
    while (walk.next()) {
        if (walk.event() != TreeWalk::Event::item) continue;
        if (walk.type() == Files::ItemType::symbolicLink && !needs.link) needs.link = item / walk.relativePath();
        if (walk.type() != Files::ItemType::regular) continue;
        const struct stat* status = walk.status();
        if (!status || status->st_size <= needs.largestSize) continue;
        needs.largestSize = status->st_size;
        needs.largestFile = item / walk.relativePath();
    }
    return needs;
}

std::optional<std::string> refusal(const fs::path& item, const DriveInfo& drive) {
    if (!hasLimitOfLinks(drive) && !hasLimitOfSize(drive)) return std::nullopt;
    return refusal(item, Needs::of(item), drive);
}

std::optional<std::string> refusal(const fs::path& item, const Needs& needs, const DriveInfo& drive) {
    const std::string name = item.filename();
    if (hasLimitOfLinks(drive) && needs.link)
        return fmt::format("{} does not fit on {}: {} is a symlink, and {} holds none. Choose another drive.", name,
                           drive.name, needs.link->native(), formatOf(drive));
    if (hasLimitOfSize(drive) && needs.largestFile && needs.largestSize > *drive.largestFile)
        return fmt::format(
            "{} does not fit on {}: {} has {}, and {} holds no file of more than {}. Choose another "
            "drive.",
            name, drive.name, needs.largestFile->native(), SizeCalculator::format(needs.largestSize), formatOf(drive),
            SizeCalculator::format(*drive.largestFile));
    return std::nullopt;
}

std::vector<std::string> warnings(const DriveInfo& drive) {
    if (drive.keepsPermissions != false) return {};
    return {
        fmt::format("{} ({}) keeps no permissions: what was private is open to every user there, and stays so "
                    "after Move Back.",
                    drive.name, formatOf(drive))};
}

}  // namespace tarvik::DriveLimits
