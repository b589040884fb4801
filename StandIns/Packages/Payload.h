#pragma once

#include "Packages/BoundedTree.h"
#include "Packages/ByteSource.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// Payloads of packages: looked through to the end first, then written.
namespace tarvik::packages::Payload {

/// What writing one will take and leave.
struct Measure {
    /// Of all files, in bytes.
    std::uint64_t bytes = 0;
    std::uint64_t items = 0;
    /// In the order of the payload, below its place: "Editor.app/Contents".
    std::vector<std::string> paths;
};

/// Reads all of it and writes nothing. @throws PackageFailure when it is damaged, when an item would be written
/// elsewhere, through a link that it makes itself, or as what only a system has (a device); when it holds more than
/// `mostBytes` or two million items.
Measure measured(ByteSource packed, std::uint64_t mostBytes);

/// Writes all of it below `place`. @throws as above, and FileError.
void write(ByteSource packed, BoundedTree& tree, const SafeName::Components& place);

}  // namespace tarvik::packages::Payload
