#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <optional>
#include <string_view>

namespace tarvik::macvolume {

/// What the volume does that a file system of Linux does not. Each can be changed while it is mounted.
enum class Habit {
    foldsNames,           ///< names that differ in case or normal form alone are one, as on APFS and HFS+
    decomposesNames,      ///< lists names decomposed, as HFS+ keeps them
    exchangesNoNames,     ///< no two items take each other's name in one step, as on HFS+
    isExFat,              ///< no links, no permissions, no flags of a rename, times of two seconds, "._" files
    guardsSignedBundles,  ///< nobody changes what is in the signed bundles that stood there when this was switched on
    hasNoRoom,            ///< tells that no byte is available
    tellsOneCapacity,     ///< tells 0 for the one for important usage, as exFAT and network volumes do
    hangs,                ///< no call is answered until this is switched off
};

/// The habits that are on. Any thread.
class Habits {
public:
    bool has(Habit habit) const;
    void set(Habit habit, bool isOn);
    /// Returns when the volume does not hang.
    void waitWhileHanging() const;

    /// The habit of this name, as `mac-volume` takes it.
    static std::optional<Habit> named(std::string_view name);

private:
    static constexpr std::size_t count = 8;

    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::array<bool, count> m_isOn{};
};

}  // namespace tarvik::macvolume
