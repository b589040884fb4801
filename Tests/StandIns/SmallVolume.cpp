#include "StandIns/SmallVolume.h"

#include <sched.h>
#include <sys/mount.h>

namespace tarvik::test {

bool SmallVolume::isPossible() {
    static const bool isAlone =
        ::unshare(CLONE_NEWNS) == 0 && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    return isAlone;
}

SmallVolume::SmallVolume(const std::string& kind, const std::string& options) : m_kind(kind) {
    m_isMounted = isPossible() && ::mount(kind.c_str(), m_folder.path().c_str(), kind.c_str(), 0, options.c_str()) == 0;
}

SmallVolume::~SmallVolume() {
    if (m_isMounted) ::umount2(m_folder.path().c_str(), MNT_DETACH);
}

void SmallVolume::makeReadOnly() {
    ::mount(m_kind.c_str(), m_folder.path().c_str(), m_kind.c_str(), MS_REMOUNT | MS_RDONLY, nullptr);
}

}  // namespace tarvik::test
