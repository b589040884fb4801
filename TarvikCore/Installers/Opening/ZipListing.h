#pragma once

#include "Installers/Opening/ZipBytes.h"
#include "Installers/Opening/ZipHeader.h"

#include <cstdint>
#include <functional>
#include <optional>

/// The directory at the end of an archive.
namespace tarvik::ZipListing {

/// Where the directory lies in the file, in bytes.
struct Place {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    /// What lies in the file before the archive begins: all offsets count from there.
    std::uint64_t shift = 0;

    bool operator==(const Place&) const = default;
};

/// Finds the directory by the record at the end of the file, also by the one of "Zip64". Nothing when there is none,
/// when the directory does not lie where the record says, when the archive goes over several files, or when two records
/// could be meant.
std::optional<Place> find(ZipBytes& bytes);

/// Calls `use` with each entry, in their order, whatever number of them the record tells: writers that know no Zip64
/// cut it off. @returns whether all that lies in the place are entries.
bool forEach(ZipBytes& bytes, const Place& place, const std::function<void(const ZipHeader&)>& use);

}  // namespace tarvik::ZipListing
