#pragma once

#include <cstdint>

namespace tarvik::test {

/// Flags of items as a Mac numbers them: st_flags in its <sys/stat.h>.
namespace MacFlag {

inline constexpr std::uint32_t userImmutable = 0x2;
inline constexpr std::uint32_t userAppend = 0x4;
inline constexpr std::uint32_t compressed = 0x20;
inline constexpr std::uint32_t hidden = 0x8000;
inline constexpr std::uint32_t systemImmutable = 0x20000;
inline constexpr std::uint32_t systemAppend = 0x40000;
inline constexpr std::uint32_t restricted = 0x80000;
inline constexpr std::uint32_t noUnlink = 0x100000;
inline constexpr std::uint32_t dataless = 0x40000000;

}  // namespace MacFlag

/// The extended attributes by which a `MacVolume` takes and tells what Linux has no call for. They are in no list of
/// attributes, so that nothing copies them. The kernel asks nobody's permission for names of the system.
namespace MacAttribute {

/// The flags as hexadecimal text, "100000".
inline constexpr const char* flags = "system.mac.flags";
/// "1" or "0": entries of an access control list that deny everyone to delete the item, or what is in the folder.
inline constexpr const char* denyDelete = "system.mac.deny-delete";
inline constexpr const char* denyDeleteInside = "system.mac.deny-delete-child";
/// "1" or "0": a folder that privacy keeps from programs.
inline constexpr const char* isPrivate = "system.mac.private";
/// "1" or "0": a folder whose listing ends in an error after half of its names.
inline constexpr const char* breaksListing = "system.mac.breaks-listing";

// What any item of it tells of the whole volume.

/// "APFS", "HFS+" or "exFAT".
inline constexpr const char* format = "system.mac.format";
/// "1" where extended attributes are kept in files "._NAME".
inline constexpr const char* keepsAppleDouble = "system.mac.keeps-apple-double";
/// In bytes: the first of the two capacities, the one for important usage.
inline constexpr const char* importantCapacity = "system.mac.important-capacity";

/// Set to "1" on an item for fcntl(2)'s F_FULLFSYNC, which fsync(2) of Linux is not, and on any item for a flush of the
/// whole volume.
inline constexpr const char* flushFile = "system.mac.flush-file";
inline constexpr const char* flushVolume = "system.mac.flush-volume";

}  // namespace MacAttribute

}  // namespace tarvik::test
