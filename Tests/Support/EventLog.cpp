#include "Support/EventLog.h"

#include "Platform/Files/Files.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <set>

namespace tarvik::test {

struct EventLog::State {
    mutable std::mutex mutex;
    std::condition_variable changed;
    std::set<std::string> paths;
    std::vector<std::string> sentences;
    std::vector<std::chrono::steady_clock::time_point> times;

    void note(const std::vector<std::string>& told) {
        const std::scoped_lock lock(mutex);
        paths.insert(told.begin(), told.end());
        times.push_back(std::chrono::steady_clock::now());
        changed.notify_all();
    }
};

EventLog::EventLog() : m_state(std::make_shared<State>()) {}

FileEvents::Listener EventLog::listener() const {
    return {.happened = [state = m_state](const std::vector<std::string>& paths) { state->note(paths); },
            .missed =
                [state = m_state](const std::string& sentence) {
                    const std::scoped_lock lock(state->mutex);
                    state->sentences.push_back(sentence);
                }};
}

std::vector<std::string> EventLog::missingOf(const std::vector<std::string>& paths) const {
    std::vector<std::string> missing = paths;
    std::unique_lock lock(m_state->mutex);
    m_state->changed.wait_for(lock, std::chrono::minutes(1), [&] {
        missing.erase(std::remove_if(missing.begin(), missing.end(),
                                     [&](const std::string& path) { return m_state->paths.count(path) > 0; }),
                      missing.end());
        return missing.empty();
    });
    return missing;
}

bool EventLog::tells(const fs::path& path) const {
    return missingOf({path.native()}).empty();
}

bool EventLog::hasTold(const fs::path& path) const {
    const std::scoped_lock lock(m_state->mutex);
    return m_state->paths.count(path.native()) > 0;
}

std::vector<std::string> EventLog::below(const fs::path& path) const {
    std::vector<std::string> found;
    const std::scoped_lock lock(m_state->mutex);
    for (const std::string& told : m_state->paths)
        if (Files::isAtOrBelow(told, path)) found.push_back(told);
    return found;
}

std::vector<std::string> EventLog::sentences() const {
    const std::scoped_lock lock(m_state->mutex);
    return m_state->sentences;
}

std::vector<std::chrono::steady_clock::time_point> EventLog::times() const {
    const std::scoped_lock lock(m_state->mutex);
    return m_state->times;
}

}  // namespace tarvik::test
