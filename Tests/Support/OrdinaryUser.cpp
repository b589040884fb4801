#include "Support/OrdinaryUser.h"

#include <exception>
#include <stdexcept>
#include <unistd.h>

namespace tarvik::test {

OrdinaryUser::OrdinaryUser(const fs::path& folder) : m_wasAdministrator(::geteuid() == 0) {
    constexpr uid_t nobody = 65534;
    fs::permissions(folder, fs::perms::all);
    if (m_wasAdministrator && ::seteuid(nobody) != 0) throw std::runtime_error("cannot become another user");
}

OrdinaryUser::~OrdinaryUser() {
    if (m_wasAdministrator && ::seteuid(0) != 0) std::terminate();
}

}  // namespace tarvik::test
