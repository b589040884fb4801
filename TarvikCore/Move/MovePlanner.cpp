#include "Move/MovePlanner.h"

#include "Discovery/AppBundleScanRoots.h"
#include "Move/MoveDestination.h"
#include "Platform/AppStorageNames.h"
#include "Platform/Files.h"
#include "Platform/SizingService.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <utility>

namespace tarvik::MovePlanner {

namespace {

using Roots = std::vector<fs::path>;

/// The folders at which the search for a link above an item ends.
Roots standardizedRoots(const Host& host) {
    Roots roots = AppBundleScanRoots::standardApplicationRoots(host, false);
    for (fs::path& root : roots) root = Files::standardized(root);
    return roots;
}

bool isSymbolicLinkOrInsideOne(const fs::path& path, const Roots& roots) {
    for (fs::path current = Files::standardized(path);; current = current.parent_path()) {
        if (Files::isSymbolicLink(current)) return true;
        if (std::find(roots.begin(), roots.end(), current) != roots.end()) return false;
        if (current.parent_path() == current) return false;
    }
}

bool mayMove(const fs::path& source, const Roots& roots) {
    return Files::exists(source) && !isUnsafePrefsPlist(source) && !isSymbolicLinkOrInsideOne(source, roots);
}

class Plan {
public:
    Plan(const Host& host, const DriveInfo& drive)
        : m_host(host),
          m_roots(standardizedRoots(host)),
          m_apps(AppStorageNames::appsRootOn(drive.mountPath)),
          m_data(AppStorageNames::dataRootOn(drive.mountPath)) {}

    void addBundle(const AppEntry& entry) {
        if (!mayMove(entry.bundlePath, m_roots)) return;
        const fs::path destination = m_apps / nameOf(entry.bundlePath);
        if (claim(destination)) add(entry.name, entry.bundlePath, destination, entry.appSize);
    }

    void addData(const AppEntry& entry, const fs::path& path) {
        if (!mayMove(path, m_roots)) return;
        const fs::path destination = MoveDestination::dataDestination(m_host, path, m_data);
        if (claim(destination))
            add(fmt::format("{} — {}", entry.name, nameOf(path).native()), path, destination,
                SizingService::size(m_host, path));
    }

    std::vector<MoveJob> takeJobs() { return std::move(m_jobs); }

private:
    static fs::path nameOf(const fs::path& path) { return Files::standardized(path).filename(); }

    /// Whether no earlier job goes there: what two applications share moves once, with the first of them.
    bool claim(const fs::path& destination) { return m_destinations.insert(destination).second; }

    void add(std::string label, const fs::path& source, const fs::path& destination, std::int64_t bytes) {
        m_jobs.emplace_back(std::move(label), source, destination, JobStatus::pending(), bytes, 0);
    }

    const Host& m_host;
    Roots m_roots;
    fs::path m_apps;
    fs::path m_data;
    std::set<fs::path> m_destinations;
    std::vector<MoveJob> m_jobs;
};

}  // namespace

std::vector<MoveJob> buildAppJobs(const Host& host, const std::vector<AppEntry>& entries, const DriveInfo& drive,
                                  bool includeData) {
    Plan plan(host, drive);
    for (const AppEntry& entry : entries) {
        plan.addBundle(entry);
        if (!includeData) continue;
        for (const fs::path& path : entry.dataPaths) plan.addData(entry, path);
    }
    return plan.takeJobs();
}

bool isUnsafePrefsPlist(const fs::path& path) {
    const fs::path standardized = Files::standardized(path);
    const std::string folder = standardized.parent_path();
    return standardized.extension() == ".plist" &&
           (folder.ends_with("/Library/Preferences") || folder.ends_with("/Library/Preferences/ByHost"));
}

bool shouldMove(const Host& host, const fs::path& source) {
    return mayMove(source, standardizedRoots(host));
}

}  // namespace tarvik::MovePlanner
