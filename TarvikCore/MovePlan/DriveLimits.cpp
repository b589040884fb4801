#include "MovePlan/DriveLimits.h"

#include "Platform/Files/Files.h"
#include "Platform/Files/SystemCalls.h"
#include "Platform/Files/TreeWalk.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <unordered_map>

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

bool hasLimitOfNames(const DriveInfo& drive) {
    return drive.foldsNames == true;
}

/// The names in the folders that a walk is in, by what a volume that folds them makes of them.
class FoldedNames {
public:
    /// The other entry of the folder that has the same name then. Depths and order are those of the walk.
    std::optional<std::string> twinOf(TreeWalk& walk) {
        const auto level = static_cast<std::size_t>(walk.depth());
        // A folder that is entered next begins anew.
        m_levels.resize(level + 1);
        const auto [first, isNew] = m_levels[level].emplace(Text::nameKey(walk.name()), walk.name());
        return isNew ? std::nullopt : std::optional(first->second);
    }

private:
    std::vector<std::unordered_map<std::string, std::string>> m_levels;
};

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
    FoldedNames names;
    TreeWalk walk(item, {});
    while (walk.next()) {
        if (walk.event() != TreeWalk::Event::item) continue;
        if (const auto twin = needs.oneName ? std::nullopt : names.twinOf(walk)) {
            const fs::path second = item / walk.relativePath();
            needs.oneName.emplace(second.parent_path() / *twin, second);
        }
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
    // No two such names can stand in one folder of a volume that folds them itself.
    const bool mayClash = hasLimitOfNames(drive) && !SystemCalls::foldsNames(item);
    if (!hasLimitOfLinks(drive) && !hasLimitOfSize(drive) && !mayClash) return std::nullopt;
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
    if (hasLimitOfNames(drive) && needs.oneName)
        return fmt::format("{} does not fit on {}: {} and {} would be one item there. Choose another drive.", name,
                           drive.name, needs.oneName->first.native(), needs.oneName->second.filename().native());
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
