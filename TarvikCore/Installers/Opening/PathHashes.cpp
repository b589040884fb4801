#include "Installers/Opening/PathHashes.h"

#include <algorithm>

namespace tarvik {

void PathHashes::add(std::uint64_t hash) {
    m_hashes.push_back(hash);
    if (m_hashes.size() < m_most) return;
    makeUnique();
    m_most = std::max(m_most, m_hashes.size() * 2);
}

void PathHashes::makeUnique() {
    if (m_unique == m_hashes.size()) return;
    std::sort(m_hashes.begin(), m_hashes.end());
    const auto end = std::unique(m_hashes.begin(), m_hashes.end());
    m_haveRepetition = m_haveRepetition || end != m_hashes.end();
    m_hashes.erase(end, m_hashes.end());
    m_unique = m_hashes.size();
}

bool PathHashes::haveRepetition() {
    makeUnique();
    return m_haveRepetition;
}

bool PathHashes::haveOneInCommonWith(PathHashes& other) {
    if (isEmpty() || other.isEmpty()) return false;
    makeUnique();
    other.makeUnique();
    const auto& fewer = m_hashes.size() < other.m_hashes.size() ? m_hashes : other.m_hashes;
    const auto& more = m_hashes.size() < other.m_hashes.size() ? other.m_hashes : m_hashes;
    return std::any_of(fewer.begin(), fewer.end(),
                       [&](std::uint64_t hash) { return std::binary_search(more.begin(), more.end(), hash); });
}

}  // namespace tarvik
