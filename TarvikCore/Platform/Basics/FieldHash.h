#pragma once

#include "Platform/Basics/Path.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

/// Hashes for records that stand in unordered sets and maps: one line for each record, over all its fields.
namespace tarvik::FieldHash {

template <typename Field>
std::size_t ofField(const Field& field) noexcept {
    return std::hash<Field>()(field);
}

inline std::size_t ofField(const fs::path& path) noexcept {
    return fs::hash_value(path);
}

template <typename Clock, typename Duration>
std::size_t ofField(const std::chrono::time_point<Clock, Duration>& instant) noexcept {
    return ofField(instant.time_since_epoch().count());
}

template <typename Field>
std::size_t ofField(const std::optional<Field>& field) noexcept {
    constexpr std::size_t absent = 0x51ED270B;  // Any number that no field is likely to hash to.
    return field ? ofField(*field) : absent;
}

template <typename Field>
std::size_t ofField(const std::vector<Field>& list) noexcept {
    std::size_t hash = list.size();
    for (const Field& field : list) hash = hash * 31 + ofField(field);
    return hash;
}

/// One hash of several fields; it depends on their order. Equal fields give equal hashes.
template <typename... Fields>
std::size_t of(const Fields&... fields) noexcept {
    constexpr std::size_t goldenRatio = 0x9E3779B9;
    std::size_t hash = 0;
    ((hash ^= ofField(fields) + goldenRatio + (hash << 6U) + (hash >> 2U)), ...);
    return hash;
}

}  // namespace tarvik::FieldHash
