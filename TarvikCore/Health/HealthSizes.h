#pragma once

#include "Health/HealthIssue.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Machine/Host.h"

#include <functional>
#include <vector>

namespace tarvik {

/// Finds out what findings take on the disk, several at a time: the slowest part of a check. Any thread.
class HealthSizes {
public:
    enum class Wish { measured, leftOut };

    /// `host` must outlive it. Once it is cancelled, sizes come out too small.
    explicit HealthSizes(const Host& host, Wish wish = Wish::measured, Cancellation cancellation = {});

    /// Gives each finding the size of the item that `measured` names for it, as `SizeCalculator` tells it; sizes that
    /// are left out stay as they are. Blocks; never fails.
    void fill(std::vector<HealthIssue>& issues,
              const std::function<const fs::path&(const HealthIssue&)>& measured) const;

private:
    const Host& m_host;
    Wish m_wish;
    Cancellation m_cancellation;
};

}  // namespace tarvik
