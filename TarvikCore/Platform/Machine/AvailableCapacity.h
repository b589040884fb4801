#pragma once

#include <cstdint>
#include <optional>

/// What may still be written to a volume, of the two figures that a Mac tells. Pure.
namespace tarvik::AvailableCapacity {

/// In bytes. `forImportantUsage` counts what the system would clear away to make room, but is 0, or missing, on volumes
/// that know no such thing: exFAT, FAT, network volumes. There the plain figure counts. (Apple's documentation of
/// NSURLVolumeAvailableCapacityForImportantUsageKey and NSURLVolumeAvailableCapacityKey.)
/// Nothing when neither is told.
constexpr std::optional<std::int64_t> of(std::optional<std::int64_t> forImportantUsage,
                                         std::optional<std::int64_t> plain) {
    if (forImportantUsage.value_or(0) > 0 || !plain) return forImportantUsage;
    return plain;
}

}  // namespace tarvik::AvailableCapacity
