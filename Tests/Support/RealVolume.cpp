#include "Support/RealVolume.h"

#include <cstdlib>
#include <utility>

namespace tarvik::test {

RealVolume::RealVolume(RealVolume&& other) noexcept : m_path(std::exchange(other.m_path, {})) {}

RealVolume::~RealVolume() {
    detach();
}

bool skipsAreForbidden() {
    const char* value = std::getenv("TARVIK_NO_SKIPS");
    return value && *value;
}

}  // namespace tarvik::test
