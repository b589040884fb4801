#pragma once

#include "Platform/Machine/FileEvents.h"

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace tarvik::test {

/// Notes what it is told of files, for a test that waits for it.
class EventLog {
public:
    EventLog();

    /// May outlive the log.
    FileEvents::Listener listener() const;

    /// Waits until all these paths have been told, a minute at most. @returns those that have not.
    std::vector<std::string> missingOf(const std::vector<std::string>& paths) const;
    /// The same for one; whether it was told.
    bool tells(const fs::path& path) const;
    /// Whether it was told by now.
    bool hasTold(const fs::path& path) const;
    /// All told by now at or below a path, sorted.
    std::vector<std::string> below(const fs::path& path) const;
    std::vector<std::string> sentences() const;
    /// When batches came.
    std::vector<std::chrono::steady_clock::time_point> times() const;
    /// How many batches came.
    std::size_t batches() const { return times().size(); }

private:
    struct State;
    std::shared_ptr<State> m_state;
};

}  // namespace tarvik::test
