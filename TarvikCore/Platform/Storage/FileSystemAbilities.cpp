#include "Platform/Storage/FileSystemAbilities.h"

#include <algorithm>
#include <iterator>

namespace tarvik {

namespace {

// A file's size has 32 bits there.
constexpr std::int64_t largestOnFat = 0xFFFFFFFF;

// Columns as declared: links, permissions, largest file. Sources: the formats' own descriptions and mount(8) of Linux.
constexpr FileSystemAbilities abilities[] = {
    {"APFS", true, true, std::nullopt},    {"HFS+", true, true, std::nullopt},  {"exFAT", false, false, std::nullopt},
    {"FAT32", false, false, largestOnFat}, {"FAT", false, false, largestOnFat}, {"NTFS", true, true, std::nullopt},
    {"ext4", true, true, std::nullopt},    {"Btrfs", true, true, std::nullopt}, {"XFS", true, true, std::nullopt},
    {"F2FS", true, true, std::nullopt},
};

}  // namespace

std::optional<FileSystemAbilities> FileSystemAbilities::of(std::string_view format) {
    const auto* const found = std::find_if(std::begin(abilities), std::end(abilities),
                                           [&](const FileSystemAbilities& each) { return each.format == format; });
    return found == std::end(abilities) ? std::nullopt : std::optional(*found);
}

}  // namespace tarvik
