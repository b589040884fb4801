#pragma once

#include <cstdint>

/// The flags that a file system keeps for an item beside its permissions: what they mean for who wants to move it.
/// They are told by the Mac's numbers, those of chflags(2) and <sys/stat.h>, on every system. Pure.
namespace tarvik::FileFlags {

/// Set and lifted by the item's owner (UF_...).
inline constexpr std::uint32_t userImmutable = 0x00000002;
inline constexpr std::uint32_t userAppend = 0x00000004;
/// Set and lifted by the administrator (SF_...).
inline constexpr std::uint32_t systemImmutable = 0x00020000;
inline constexpr std::uint32_t systemAppend = 0x00040000;
/// Kept by the system's integrity protection, from the administrator too (SF_RESTRICTED).
inline constexpr std::uint32_t restricted = 0x00080000;
/// The item itself may be neither removed nor renamed; what is in it may (SF_NOUNLINK). /Applications bears it.
inline constexpr std::uint32_t noUnlink = 0x00100000;
/// The contents are not on the disk but with a service, which brings them when they are read (SF_DATALESS).
inline constexpr std::uint32_t dataless = 0x40000000;

inline constexpr std::uint32_t userLocks = userImmutable | userAppend;
inline constexpr std::uint32_t administratorLocks = systemImmutable | systemAppend;
inline constexpr std::uint32_t systemGuards = restricted | noUnlink;

/// Whether the item itself can be neither removed nor renamed.
constexpr bool guardItem(std::uint32_t flags) {
    return (flags & (userLocks | administratorLocks | systemGuards)) != 0;
}
/// Whether nothing can be taken out of a folder. One that may only be added to (an append flag) is sealed too.
constexpr bool sealContents(std::uint32_t flags) {
    return (flags & (userLocks | administratorLocks | restricted)) != 0;
}
/// Whether the system itself keeps the item: neither its owner nor the administrator lifts that.
constexpr bool isKeptBySystem(std::uint32_t flags) {
    return (flags & systemGuards) != 0;
}
/// Whether somebody has locked it, who can unlock it again.
constexpr bool isLocked(std::uint32_t flags) {
    return (flags & (userLocks | administratorLocks)) != 0;
}

}  // namespace tarvik::FileFlags
