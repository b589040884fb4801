#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tarvik {

/// Many hashes of paths, each kept once: however often an archive names one path, it takes no more room. Pure.
class PathHashes {
public:
    void add(std::uint64_t hash);
    bool isEmpty() const { return m_hashes.empty(); }
    /// Whether one was added twice.
    bool haveRepetition();
    bool haveOneInCommonWith(PathHashes& other);

private:
    void makeUnique();

    std::vector<std::uint64_t> m_hashes;
    /// How many there may be before it is worth looking for equal ones.
    std::size_t m_most = std::size_t{1} << 16;
    /// So many at the beginning are sorted and unique.
    std::size_t m_unique = 0;
    bool m_haveRepetition = false;
};

}  // namespace tarvik
