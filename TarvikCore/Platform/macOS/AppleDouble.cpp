#include "Platform/Files/AppleDouble.h"

#include <cstdint>
#include <sys/attr.h>
#include <sys/mount.h>
#include <unistd.h>

bool tarvik::AppleDouble::areKeptAt(const fs::path& path) {
    // getattrlist(2): questions to a volume go to its mount point, and a bit counts only where it is marked as valid.
    struct statfs volume {};
    if (::statfs(path.c_str(), &volume) != 0) return false;
    struct attrlist wanted {};
    wanted.bitmapcount = ATTR_BIT_MAP_COUNT;
    wanted.volattr = ATTR_VOL_INFO | ATTR_VOL_CAPABILITIES;
    struct {
        std::uint32_t length;
        vol_capabilities_attr_t abilities;
    } __attribute__((packed, aligned(4))) answer{};
    if (::getattrlist(volume.f_mntonname, &wanted, &answer, sizeof answer, 0) != 0) return false;
    const bool isKnown = (answer.abilities.valid[VOL_CAPABILITIES_INTERFACES] & VOL_CAP_INT_EXTENDED_ATTR) != 0;
    return isKnown && (answer.abilities.capabilities[VOL_CAPABILITIES_INTERFACES] & VOL_CAP_INT_EXTENDED_ATTR) == 0;
}
