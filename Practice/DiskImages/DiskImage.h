#pragma once

#include "Platform/Basics/Path.h"
#include "Practice/DiskImages/PartitionTable.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// Disk images as a Mac makes them: a disk in compressed pieces, behind them a property list that tells where each
/// lies, and at the very end the block that begins with "koly". The same contents give the same bytes.
namespace tarvik::Practice::DiskImage {

struct Volume {
    std::string name;
    fs::path tree;  ///< whose contents are the volume's
};

/// How pieces are packed, and the number by which images name that. What gets no smaller is kept as it is.
struct Packing {
    std::uint32_t number;
    std::function<std::string(const std::string&)> packed;
};

Packing zlib();
Packing none();

/// A compressed image of a disk with these volumes.
/// @throws FileError when a tree cannot be read or the file not be written; Failure when a tree is too large or holds
/// something else than files, folders and links.
void create(const fs::path& image, const std::vector<Volume>& volumes);

/// An image of any disk. Each stretch is packed by itself and is a multiple of 512 bytes.
/// @throws FileError
void write(const fs::path& image, const std::vector<PartitionTable::Stretch>& stretches, const Packing& packing);

}  // namespace tarvik::Practice::DiskImage
