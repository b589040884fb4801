#include "Support/Linux/PlainUser.h"

#include <linux/capability.h>
#include <linux/securebits.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tarvik::test {

namespace {

/// Only these may come and go: the one that gives the others back, and mounting, which tests do meanwhile.
constexpr unsigned kept = (1U << CAP_SETPCAP) | (1U << CAP_SYS_ADMIN);

struct Rights {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[2]{};

    Rights() {
        if (::syscall(SYS_capget, &header, data) != 0) throw std::runtime_error("cannot read the rights");
    }
    bool areSet() { return ::syscall(SYS_capset, &header, data) == 0; }
};

}  // namespace

PlainUser::PlainUser() {
    if (::geteuid() != 0) return;
    Rights rights;
    rights.data[0].effective &= kept;
    rights.data[1].effective = 0;
    // Without the second step a program that is started would have all rights again.
    if (!rights.areSet() || ::prctl(PR_SET_SECUREBITS, SECBIT_NOROOT) != 0)
        throw std::runtime_error("cannot give up rights");
    m_hasGivenUp = true;
}

PlainUser::~PlainUser() {
    if (!m_hasGivenUp) return;
    ::prctl(PR_SET_SECUREBITS, 0);
    Rights rights;
    for (auto& half : rights.data) half.effective = half.permitted;
    rights.areSet();
}

}  // namespace tarvik::test
