#pragma once

#include "Platform/Basics/Path.h"

#include <future>

namespace tarvik {

/// Brings a volume's unwritten data to its drive, from a thread of its own, while the caller does something else.
class VolumeFlush {
public:
    /// Begins to flush the volume that holds `item`. Where no thread can be had, `error` does the work.
    explicit VolumeFlush(const fs::path& item);

    /// Waits for the end. @returns 0 or an errno value. Call once; the destructor waits too.
    int error() { return m_error.get(); }

private:
    std::future<int> m_error;
};

}  // namespace tarvik
