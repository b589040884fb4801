#include "Platform/Storage/FileSystemAbilities.h"

#include <algorithm>
#include <iterator>

namespace tarvik {

namespace {

using namespace std::chrono_literals;

// A file's size has 32 bits there.
constexpr std::int64_t largestOnFat = 0xFFFFFFFF;

// Columns as declared: links, permissions, exchange, folding, times, largest file, written to by a Mac. Sources: the
// formats' own descriptions and the manual pages rename(2) and mount(8) of Linux.
constexpr FileSystemAbilities abilities[] = {
    {"APFS", true, true, true, true, 1ns, std::nullopt, true},
    {"HFS+", true, true, false, true, 1s, std::nullopt, true},
    {"exFAT", false, false, false, true, 10ms, std::nullopt, true},
    {"FAT32", false, false, false, true, 2s, largestOnFat, true},
    {"FAT", false, false, false, true, 2s, largestOnFat, true},
    {"NTFS", true, true, false, false, 100ns, std::nullopt, false},
    {"ext4", true, true, true, false, 1ns, std::nullopt, false},
    {"Btrfs", true, true, true, false, 1ns, std::nullopt, false},
    {"XFS", true, true, true, false, 1ns, std::nullopt, false},
    {"F2FS", true, true, true, false, 1ns, std::nullopt, false},
};

}  // namespace

std::optional<FileSystemAbilities> FileSystemAbilities::of(std::string_view format) {
    const auto* const found = std::find_if(std::begin(abilities), std::end(abilities),
                                           [&](const FileSystemAbilities& each) { return each.format == format; });
    return found == std::end(abilities) ? std::nullopt : std::optional(*found);
}

}  // namespace tarvik
