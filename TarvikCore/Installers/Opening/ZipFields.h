#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// Numbers of archives: the low byte comes first.
namespace tarvik::ZipFields {

/// `count` bytes at `at` as a number; what lies beyond the end counts as 0.
inline std::uint64_t number(std::string_view bytes, std::size_t at, std::size_t count) {
    std::uint64_t value = 0;
    for (std::size_t i = count; i-- > 0;)
        value = value << 8U | (at + i < bytes.size() ? static_cast<unsigned char>(bytes[at + i]) : 0U);
    return value;
}
inline std::uint16_t two(std::string_view bytes, std::size_t at) {
    return static_cast<std::uint16_t>(number(bytes, at, 2));
}
inline std::uint32_t four(std::string_view bytes, std::size_t at) {
    return static_cast<std::uint32_t>(number(bytes, at, 4));
}
inline std::uint64_t eight(std::string_view bytes, std::size_t at) {
    return number(bytes, at, 8);
}

}  // namespace tarvik::ZipFields
