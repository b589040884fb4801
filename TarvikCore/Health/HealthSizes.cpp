#include "Health/HealthSizes.h"

#include "Platform/Basics/Parallel.h"
#include "Platform/Machine/SilentVolumes.h"
#include "Platform/Storage/SizeCalculator.h"

#include <utility>

namespace tarvik {

HealthSizes::HealthSizes(const Host& host, Wish wish, Cancellation cancellation)
    : m_host(host), m_wish(wish), m_cancellation(std::move(cancellation)) {}

void HealthSizes::fill(std::vector<HealthIssue>& issues,
                       const std::function<const fs::path&(const HealthIssue&)>& measured) const {
    if (m_wish == Wish::leftOut) return;
    inParallel(issues.size(), processorCount(), [&](std::size_t index) {
        const fs::path& item = measured(issues[index]);
        if (!SilentVolumes::hold(m_host, item))
            issues[index].sizeBytes = SizeCalculator::size(m_host, item, m_cancellation);
    });
}

}  // namespace tarvik
