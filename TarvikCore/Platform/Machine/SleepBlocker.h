#pragma once

#include <memory>
#include <string>

namespace tarvik {

/// Keeps the machine from falling asleep by itself while something long goes on. A lid that is closed, or a user who
/// insists, still gets it to sleep. Safe to call from any thread; never throws.
class SleepBlocker {
public:
    /// The machine stays awake for as long as this lives.
    class Hold {
    public:
        Hold() = default;
        virtual ~Hold() = default;
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;
    };

    virtual ~SleepBlocker() = default;

    /// There may be several at a time. `reason` is what a user reads who looks for what keeps the machine awake.
    /// Null where the system does not allow it, or knows no such thing.
    virtual std::unique_ptr<Hold> hold(const std::string& reason) const = 0;
};

/// The one of this system.
std::shared_ptr<const SleepBlocker> makeSystemSleepBlocker();

}  // namespace tarvik
