#include "Installers/Tracking/PathSet.h"

#include <algorithm>
#include <iterator>

namespace tarvik {

namespace {

/// In bytes. A path that is longer has a block of its own.
constexpr std::size_t blockSize = 4096;
/// What a number takes at most.
constexpr std::size_t longestNumber = 10;

/// Seven bits a byte, the lowest first; all bytes but the last have the highest bit set.
void appendNumber(std::string& bytes, std::size_t number) {
    while (number >= 0x80) {
        bytes += static_cast<char>(0x80 | (number & 0x7F));
        number >>= 7;
    }
    bytes += static_cast<char>(number);
}

std::size_t takeNumber(std::string_view bytes, std::size_t& position) {
    std::size_t number = 0;
    for (unsigned shift = 0;; shift += 7) {
        const auto byte = static_cast<unsigned char>(bytes[position++]);
        number |= static_cast<std::size_t>(byte & 0x7F) << shift;
        if (byte < 0x80) return number;
    }
}

std::size_t sharedLength(std::string_view one, std::string_view other) {
    const auto [end, ignored] = std::mismatch(one.begin(), one.end(), other.begin(), other.end());
    return static_cast<std::size_t>(end - one.begin());
}

int rankOf(char byte) {
    return byte == '/' ? -1 : static_cast<unsigned char>(byte);
}

/// Whether `one` stands before `other` when their first `shared` bytes are known to be the same and no more.
bool isBeforeAfter(std::size_t shared, std::string_view one, std::string_view other) {
    if (shared == other.size()) return false;
    return shared == one.size() || rankOf(one[shared]) < rankOf(other[shared]);
}

/// The path that a block begins with.
std::string_view firstPathOf(std::string_view block) {
    std::size_t position = 0;
    takeNumber(block, position);
    const std::size_t length = takeNumber(block, position);
    return block.substr(position, length);
}

}  // namespace

PathSet::PathSet(std::vector<std::string> paths) {
    std::sort(paths.begin(), paths.end(), isBefore);
    for (const std::string& path : paths) append(path);
}

bool PathSet::isBefore(std::string_view one, std::string_view other) {
    return isBeforeAfter(sharedLength(one, other), one, other);
}

bool PathSet::append(std::string_view path) {
    std::size_t shared = sharedLength(m_last, path);
    if (m_size > 0 && !isBeforeAfter(shared, m_last, path)) return false;
    const bool fits =
        !m_blocks.empty() && m_blocks.back().size() + 2 * longestNumber + path.size() - shared <= blockSize;
    if (!fits) {
        if (!m_blocks.empty()) m_blocks.back().shrink_to_fit();
        m_blocks.emplace_back().reserve(blockSize);
        shared = 0;
    }
    std::string& block = m_blocks.back();
    appendNumber(block, shared);
    appendNumber(block, path.size() - shared);
    block += path.substr(shared);
    m_last = path;
    ++m_size;
    return true;
}

bool PathSet::contains(std::string_view path) const {
    const auto after = std::upper_bound(
        m_blocks.begin(), m_blocks.end(), path,
        [](std::string_view wanted, const std::string& block) { return isBefore(wanted, firstPathOf(block)); });
    if (after == m_blocks.begin()) return false;
    const auto block = static_cast<std::size_t>(std::distance(m_blocks.begin(), after)) - 1;
    const Iterator end(m_blocks, block + 1);
    for (Iterator at(m_blocks, block); at != end; ++at) {
        if (*at == path) return true;
        if (isBefore(path, *at)) return false;
    }
    return false;
}

PathSet::Iterator PathSet::begin() const {
    return {m_blocks, 0};
}

PathSet::Iterator PathSet::end() const {
    return {m_blocks, m_blocks.size()};
}

PathSet::Iterator::Iterator(const std::vector<std::string>& blocks, std::size_t block)
    : m_blocks(&blocks), m_block(block) {
    if (m_block < m_blocks->size()) read();
}

PathSet::Iterator& PathSet::Iterator::operator++() {
    if (m_next < (*m_blocks)[m_block].size()) {
        read();
        return *this;
    }
    ++m_block;
    m_next = 0;
    if (m_block < m_blocks->size()) read();
    return *this;
}

void PathSet::Iterator::read() {
    const std::string& block = (*m_blocks)[m_block];
    m_path.resize(takeNumber(block, m_next));
    const std::size_t rest = takeNumber(block, m_next);
    m_path.append(block, m_next, rest);
    m_next += rest;
}

}  // namespace tarvik
