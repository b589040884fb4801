#pragma once

#include <chrono>
#include <functional>
#include <poll.h>
#include <string_view>
#include <vector>

namespace tarvik {

/// Reads several pipes at once on one thread, so that a tool that writes much to one is never stuck behind another.
class StreamReader {
public:
    /// Gets what was read, piece by piece and in order. Empty: it goes nowhere.
    using Sink = std::function<void(std::string_view)>;

    /// Takes a descriptor, which stays its owner's and must not block other readers; -1 counts as ended.
    void add(int descriptor, Sink sink);
    /// Every stream has been read to its end, or can no longer be read.
    bool hasEnded() const;
    /// Waits until there is something to read, or all streams have ended, or `limit` has passed, and reads what is
    /// there; -1 ms is no limit. Once all streams have ended it only sleeps.
    void read(std::chrono::milliseconds limit);
    void readToEnd();

private:
    std::vector<pollfd> m_streams;
    std::vector<Sink> m_sinks;
};

}  // namespace tarvik
