#include "Program/Habits.h"

#include <algorithm>
#include <iterator>

namespace tarvik::macvolume {

namespace {

/// In the order of the habits.
constexpr std::array<std::string_view, 8> habitNames = {
    "folds-names",           "decomposes-names", "exchanges-no-names", "exfat",
    "guards-signed-bundles", "has-no-room",      "tells-one-capacity", "hangs"};

std::size_t indexOf(Habit habit) {
    return static_cast<std::size_t>(habit);
}

}  // namespace

bool Habits::has(Habit habit) const {
    const std::lock_guard lock(m_mutex);
    return m_isOn[indexOf(habit)];
}

void Habits::set(Habit habit, bool isOn) {
    const std::lock_guard lock(m_mutex);
    m_isOn[indexOf(habit)] = isOn;
    m_changed.notify_all();
}

void Habits::waitWhileHanging() const {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return !m_isOn[indexOf(Habit::hangs)]; });
}

std::optional<Habit> Habits::named(std::string_view name) {
    const auto found = std::find(habitNames.begin(), habitNames.end(), name);
    if (found == habitNames.end()) return std::nullopt;
    return static_cast<Habit>(std::distance(habitNames.begin(), found));
}

}  // namespace tarvik::macvolume
