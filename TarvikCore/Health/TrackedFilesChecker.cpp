#include "Health/TrackedFilesChecker.h"

#include "Platform/Files/Files.h"
#include "Platform/Machine/SilentVolumes.h"
#include "Records/InstallsDB.h"
#include "Records/InstallsDBEntryResolver.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cstddef>
#include <string>
#include <vector>

namespace tarvik::TrackedFilesChecker {

std::optional<HealthIssue> check(const Host& host, const fs::path& location, const fs::path& target) {
    constexpr std::size_t mostNames = 3;
    const fs::path database = InstallsDB::defaultPath(host);
    if (!InstallsDB::isAvailable(database)) return std::nullopt;
    const auto entry = InstallsDBEntryResolver::resolve(host, location, target);
    if (!entry) return std::nullopt;
    const auto tracked = InstallsDB::trackedFiles(database, entry->installId);
    std::size_t missing = 0;
    std::vector<std::string> first;
    for (const fs::path& file : tracked) {
        if (SilentVolumes::hold(host, file) || !Files::isMissing(file)) continue;
        ++missing;
        if (first.size() < mostNames) first.push_back(file);
    }
    if (missing == 0) return std::nullopt;
    std::string detail = fmt::format("{}/{} tracked files missing for {}: {}", missing, tracked.size(), entry->appName,
                                     fmt::join(first, ", "));
    if (missing > mostNames) detail += fmt::format(" (+{} more)", missing - mostNames);
    return HealthIssue{.kind = HealthIssue::Kind::missingTrackedFiles,
                       .location = location,
                       .target = target,
                       .detail = std::move(detail)};
}

}  // namespace tarvik::TrackedFilesChecker
