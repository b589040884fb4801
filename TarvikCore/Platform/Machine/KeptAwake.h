#pragma once

#include "Platform/Machine/Host.h"
#include "Platform/Machine/SleepBlocker.h"

#include <memory>
#include <string>

namespace tarvik {

/// Keeps the host's machine awake for as long as it lives, where that can be done. A machine in a folder does not
/// sleep.
class KeptAwake {
public:
    /// `reason` is what a user reads who looks for what keeps the machine awake.
    KeptAwake(const Host& host, const std::string& reason)
        : m_hold(host.sleepBlocker ? host.sleepBlocker->hold(reason) : nullptr) {}

private:
    std::unique_ptr<SleepBlocker::Hold> m_hold;
};

}  // namespace tarvik
