#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// A disk with a GUID partition table, as the UEFI specification describes it.
namespace tarvik::Practice::PartitionTable {

constexpr std::uint64_t sectorSize = 512;

/// One stretch of the disk.
struct Stretch {
    std::string name;  ///< as images name it: "disk image (Apple_HFS : 4)"
    std::string bytes;
};

/// The stretches of a disk that holds these volumes of the extended format, first to last and without gaps.
/// Each volume's bytes are a multiple of 4096.
std::vector<Stretch> around(const std::vector<std::string>& volumes);

}  // namespace tarvik::Practice::PartitionTable
