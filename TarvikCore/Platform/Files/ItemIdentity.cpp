#include "Platform/Files/ItemIdentity.h"

namespace tarvik {

bool ItemIdentity::isSame(const ItemIdentity& other) const {
    if (type != other.type) return false;
    const bool areBirthsKnown = born && other.born;
    if (areBirthsKnown && *born != *other.born) return false;
    const bool isUnchanged = size == other.size && changed == other.changed;
    return inode == other.inode ? areBirthsKnown || isUnchanged : isUnchanged;
}

}  // namespace tarvik
