#include "hdiutil/TarList.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <limits>

namespace tarvik::hdiutil {

namespace {

constexpr std::size_t usedOfLine = 4096;  // The size stands near its beginning.

}  // namespace

void TarList::take(std::string_view piece) {
    for (const char letter : piece) {
        if (letter == '\n')
            takeLine();
        else if (m_line.size() < usedOfLine)
            m_line += letter;
    }
}

void TarList::takeLine() {
    constexpr std::int64_t block = 4096;
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max() / 4;
    std::size_t at = 0;
    for (int word = 0; word < 4; ++word) {
        at = m_line.find_first_not_of(' ', at);
        at = m_line.find(' ', at);
    }
    at = m_line.find_first_not_of(' ', at);
    std::int64_t size = 0;
    if (at != std::string::npos) std::from_chars(m_line.data() + at, m_line.data() + m_line.size(), size);
    m_neededBytes = std::min(most, m_neededBytes + (std::clamp<std::int64_t>(size, 0, most) / block + 1) * block);
    m_line.clear();
}

}  // namespace tarvik::hdiutil
