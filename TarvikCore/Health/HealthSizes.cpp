#include "Health/HealthSizes.h"

#include "Platform/Basics/Parallel.h"
#include "Platform/Storage/SizeCalculator.h"

#include <utility>

namespace tarvik {

HealthSizes::HealthSizes(const Host& host, Wish wish, Cancellation cancellation)
    : m_host(host), m_wish(wish), m_cancellation(std::move(cancellation)) {}

void HealthSizes::fill(std::vector<HealthIssue>& issues,
                       const std::function<const fs::path&(const HealthIssue&)>& measured) const {
    if (m_wish == Wish::leftOut) return;
    inParallel(issues.size(), processorCount(), [&](std::size_t index) {
        issues[index].sizeBytes = SizeCalculator::size(m_host, measured(issues[index]), m_cancellation);
    });
}

}  // namespace tarvik
