#include "Platform/Storage/FileSystemAbilities.h"

#include <algorithm>
#include <iterator>

namespace tarvik {

namespace {

// A file's size has 32 bits there.
constexpr std::int64_t largestOnFat = 0xFFFFFFFF;

// Columns as declared: links, permissions, folding, largest file. Sources: the formats' own descriptions and mount(8)
// of Linux.
constexpr FileSystemAbilities abilities[] = {
    {"APFS", true, true, true, std::nullopt},    {"HFS+", true, true, true, std::nullopt},
    {"exFAT", false, false, true, std::nullopt}, {"FAT32", false, false, true, largestOnFat},
    {"FAT", false, false, true, largestOnFat},   {"NTFS", true, true, false, std::nullopt},
    {"ext4", true, true, false, std::nullopt},   {"Btrfs", true, true, false, std::nullopt},
    {"XFS", true, true, false, std::nullopt},    {"F2FS", true, true, false, std::nullopt},
};

}  // namespace

std::optional<FileSystemAbilities> FileSystemAbilities::of(std::string_view format) {
    const auto* const found = std::find_if(std::begin(abilities), std::end(abilities),
                                           [&](const FileSystemAbilities& each) { return each.format == format; });
    return found == std::end(abilities) ? std::nullopt : std::optional(*found);
}

}  // namespace tarvik
