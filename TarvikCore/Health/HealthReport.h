#pragma once

#include "Health/HealthIssue.h"

#include <chrono>
#include <cstddef>
#include <map>
#include <vector>

namespace tarvik {

/// What a health check found.
struct HealthReport {
    /// All of it, healthy links included, in the order of the check's steps.
    std::vector<HealthIssue> issues;
    /// How many links were looked at, and how many of them are healthy.
    std::size_t healthyCount = 0;
    std::size_t scannedSymlinks = 0;
    /// The folders on drives that were searched for applications.
    std::vector<fs::path> scannedDrives;
    /// When the check ended.
    std::chrono::system_clock::time_point scannedAt;

    bool operator==(const HealthReport&) const = default;

    /// What is not healthy, in the same order.
    std::vector<HealthIssue> problems() const;
    /// The findings of each kind that has any, in the same order.
    std::map<HealthIssue::Kind, std::vector<HealthIssue>> grouped() const;
    /// The largest healthy links, at most `most`; equal ones in the same order.
    std::vector<HealthIssue> largestHealthy(std::size_t most) const;
};

}  // namespace tarvik
