#pragma once

#include "Platform/Linux/VolumeRules.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Reads what the system knows of one block device: from the device database, and without one (in a container, in a
/// virtual machine) from the tree of devices alone.
namespace tarvik::BlockDevice {

struct Facts {
    /// The label of the file system on it.
    std::optional<std::string> label;
    /// The UUID of the file system on it.
    std::optional<std::string> identifier;
    std::string contentType;
    bool isLoopDevice = false;
    std::vector<DiskFacts> disks;
};

/// Empty facts when there is no such device. Never fails; may be called from any thread.
Facts read(std::uint64_t deviceNumber);

}  // namespace tarvik::BlockDevice
