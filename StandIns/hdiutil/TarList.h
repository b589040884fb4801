#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarvik::hdiutil {

/// Adds up the sizes in what `bsdtar -tv` prints, in pieces of any size: a line for each item, whose fifth word is its
/// size in bytes.
class TarList {
public:
    void take(std::string_view piece);

    /// What the items will take on a disk.
    std::int64_t neededBytes() const { return m_neededBytes; }

private:
    void takeLine();

    std::string m_line;
    std::int64_t m_neededBytes = 0;
};

}  // namespace tarvik::hdiutil
