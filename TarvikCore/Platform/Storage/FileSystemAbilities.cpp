#include "Platform/Storage/FileSystemAbilities.h"

#include <algorithm>
#include <iterator>

namespace tarvik {

namespace {

using namespace std::chrono_literals;

// A file's size has 32 bits there.
constexpr std::int64_t largestOnFat = 0xFFFFFFFF;

// Columns as declared: links, permissions, exchange, folding, written to by a Mac, times, largest file. Sources: the
// formats' own descriptions and the manual pages rename(2) and mount(8) of Linux.
constexpr FileSystemAbilities abilities[] = {
    {"APFS", true, true, true, true, true, 1ns, std::nullopt},
    {"HFS+", true, true, false, true, true, 1s, std::nullopt},
    {"exFAT", false, false, false, true, true, 10ms, std::nullopt},
    {"FAT32", false, false, false, true, true, 2s, largestOnFat},
    {"FAT", false, false, false, true, true, 2s, largestOnFat},
    {"NTFS", true, true, false, false, false, 100ns, std::nullopt},
    {"ext4", true, true, true, false, false, 1ns, std::nullopt},
    {"Btrfs", true, true, true, false, false, 1ns, std::nullopt},
    {"XFS", true, true, true, false, false, 1ns, std::nullopt},
    {"F2FS", true, true, true, false, false, 1ns, std::nullopt},
};

}  // namespace

std::optional<FileSystemAbilities> FileSystemAbilities::of(std::string_view format) {
    const auto* const found = std::find_if(std::begin(abilities), std::end(abilities),
                                           [&](const FileSystemAbilities& each) { return each.format == format; });
    return found == std::end(abilities) ? std::nullopt : std::optional(*found);
}

}  // namespace tarvik
