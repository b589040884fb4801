#pragma once

#include <cstdint>

/// The flags of a file system's items, by the numbers of a Mac (st_flags in its <sys/stat.h>).
namespace tarvik::FileFlags {

inline constexpr std::uint32_t userImmutable = 0x2;
inline constexpr std::uint32_t userAppend = 0x4;
inline constexpr std::uint32_t hidden = 0x8000;
inline constexpr std::uint32_t systemImmutable = 0x20000;
inline constexpr std::uint32_t systemAppend = 0x40000;
inline constexpr std::uint32_t restricted = 0x80000;
inline constexpr std::uint32_t noUnlink = 0x100000;

/// Those that let nobody remove the item.
inline constexpr std::uint32_t locks =
    userImmutable | userAppend | systemImmutable | systemAppend | restricted | noUnlink;

}  // namespace tarvik::FileFlags
