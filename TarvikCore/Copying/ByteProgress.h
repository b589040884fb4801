#pragma once

#include <algorithm>
#include <cstdint>

namespace tarvik {

/// How far something has come, in bytes. A `total` below 1 means that nobody knows how much there is.
struct ByteProgress {
    std::int64_t copied = 0;
    std::int64_t total = 0;

    bool isKnown() const { return total > 0; }
    /// 0 to 1; 0 while nothing is known.
    double fraction() const {
        return isKnown() ? std::clamp(static_cast<double>(copied) / static_cast<double>(total), 0.0, 1.0) : 0;
    }

    bool operator==(const ByteProgress&) const = default;
};

}  // namespace tarvik
