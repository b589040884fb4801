#pragma once

#include "Platform/Basics/Path.h"
#include "hdiutil/Disk.h"
#include "hdiutil/ImageFile.h"
#include "hdiutil/Volumes.h"

#include <string>
#include <utility>
#include <vector>

/// What is on the disk that an image holds.
namespace tarvik::hdiutil::DiskContents {

struct Contents {
    std::string scheme;  ///< of its partitions; empty for a disk that is one volume
    /// Each slice with the volumes that were found on it.
    std::vector<std::pair<Slice, std::vector<Volumes::Opened>>> slices;
};

/// Opens all volumes, each into a new folder below `folder`, where there is room for what is needed on the way too.
/// @throws Failure in the Mac's words, also when there is no volume.
Contents open(const ImageFile& image, const fs::path& folder);

}  // namespace tarvik::hdiutil::DiskContents
