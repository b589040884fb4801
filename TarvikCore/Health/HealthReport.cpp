#include "Health/HealthReport.h"

#include <algorithm>
#include <iterator>

namespace tarvik {

namespace {

bool isHealthy(const HealthIssue& issue) {
    return issue.kind == HealthIssue::Kind::healthy;
}

}  // namespace

std::vector<HealthIssue> HealthReport::problems() const {
    std::vector<HealthIssue> found;
    std::remove_copy_if(issues.begin(), issues.end(), std::back_inserter(found), isHealthy);
    return found;
}

std::map<HealthIssue::Kind, std::vector<HealthIssue>> HealthReport::grouped() const {
    std::map<HealthIssue::Kind, std::vector<HealthIssue>> groups;
    for (const HealthIssue& issue : issues) groups[issue.kind].push_back(issue);
    return groups;
}

std::vector<HealthIssue> HealthReport::largestHealthy(std::size_t most) const {
    std::vector<HealthIssue> found;
    std::copy_if(issues.begin(), issues.end(), std::back_inserter(found), isHealthy);
    std::stable_sort(found.begin(), found.end(), [](const HealthIssue& left, const HealthIssue& right) {
        return left.sizeBytes > right.sizeBytes;
    });
    if (found.size() > most) found.resize(most);
    return found;
}

}  // namespace tarvik
