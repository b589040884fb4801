#pragma once

#include "Platform/Basics/Path.h"

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

/// Disks with one APFS volume. The container comes from mkapfs, which makes empty ones only; a few items are then
/// written into the one node of its tree of items, as Apple's reference of the format describes them. The space that
/// they take is not booked: it is for readers.
namespace tarvik::test::APFSContainer {

struct Item {
    std::size_t folder;  ///< its place in the list, from 1; 0 is the volume's own folder
    std::string name;    ///< in ASCII
    mode_t mode;
    std::string content;     ///< of a file, up to a block of it; of a link, where it leads
    std::size_t sameAs = 0;  ///< the place of a file, from 1, of which this is one more name
};

/// Why none can be made here; nothing when one can.
std::optional<std::string> unavailableReason();

/// The disk's bytes.
std::string bytes(const fs::path& scratch, const std::string& name, const std::vector<Item>& items);

}  // namespace tarvik::test::APFSContainer
