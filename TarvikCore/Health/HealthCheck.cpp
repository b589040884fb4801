#include "Health/HealthCheck.h"

#include "Discovery/AppBundleEnumerator.h"
#include "Discovery/ApplicationsRootScan.h"
#include "Discovery/ExternalAppsRootsDiscovery.h"
#include "Health/BrokenLauncherDetector.h"
#include "Health/DanglingDataLinkDetector.h"
#include "Health/InboundLinks.h"
#include "Health/ManifestRevertDetector.h"
#include "Health/OrphanedBundleDetector.h"
#include "Health/SSDRevertDetector.h"
#include "Health/SandboxExternalSymlinkDetector.h"
#include "Health/SignatureBrokenDetector.h"
#include "Health/SymlinkInspector.h"
#include "Health/TrackedFilesChecker.h"
#include "Health/UnsafePrefsPlistDetector.h"
#include "Launchers/NestedAppLauncherService.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/SilentVolumes.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Storage/SeenDrives.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <future>
#include <iterator>
#include <map>
#include <set>
#include <system_error>
#include <thread>
#include <utility>

namespace tarvik::HealthCheck {

namespace {

/// How soon a check that is cancelled is told so.
constexpr std::chrono::milliseconds glance{50};

using Links = std::vector<ApplicationsRootScan::Link>;
using Issues = std::vector<HealthIssue>;

void append(Issues& issues, Issues more) {
    issues.insert(issues.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

/// A finding for each link, and behind a healthy one what its application lacks.
void inspect(const Host& host, const Links& links, const HealthSizes& sizes, HealthReport& report) {
    Issues inspected;
    for (const auto& link : links) inspected.push_back(SymlinkInspector::inspect(host, link.location, link.target));
    sizes.fill(inspected, [](const HealthIssue& issue) -> const fs::path& { return *issue.target; });
    for (HealthIssue& issue : inspected) {
        // A link that leads to another dead one takes nothing up on the drive.
        if (issue.kind == HealthIssue::Kind::dangling) issue.sizeBytes = 0;
        const bool isHealthy = issue.kind == HealthIssue::Kind::healthy;
        report.issues.push_back(std::move(issue));
        if (!isHealthy) continue;
        ++report.healthyCount;
        const HealthIssue& healthy = report.issues.back();
        if (auto missing = TrackedFilesChecker::check(host, healthy.location, *healthy.target))
            report.issues.push_back(std::move(*missing));
    }
}

/// One finding for each linked folder, by the paths of the links.
Issues missingLaunchers(const Host& host) {
    std::map<std::string, std::vector<NestedAppLauncherCandidate>> byLink;
    for (auto& candidate : NestedAppLauncherService::missingCandidates(host, SystemFolders::applications(host)))
        byLink[candidate.folderLink].push_back(std::move(candidate));
    Issues issues;
    for (const auto& [link, candidates] : byLink)
        issues.push_back({.kind = HealthIssue::Kind::missingSpotlightLaunchers,
                          .location = link,
                          .target = candidates.front().folderTarget,
                          .detail = NestedAppLauncherService::detail(candidates)});
    return issues;
}

/// The links that nothing is wrong with so far.
Links cleanLinks(const Links& links, const Issues& issues) {
    std::set<fs::path> faulty;
    for (const HealthIssue& issue : issues)
        if (issue.kind != HealthIssue::Kind::healthy) faulty.insert(Files::standardized(issue.location));
    Links clean;
    for (const auto& link : links)
        if (!faulty.contains(Files::standardized(link.location))) clean.push_back(link);
    return clean;
}

std::set<fs::path> standardizedSet(const Links& links, fs::path ApplicationsRootScan::Link::*end) {
    std::set<fs::path> paths;
    for (const auto& link : links) paths.insert(Files::standardized(link.*end));
    return paths;
}

/// What nothing leads to. Nothing is an orphan for sure where some of the links cannot be seen.
Issues orphans(const Host& host, const std::vector<fs::path>& drives, const Links& links,
               const std::set<std::string>& realAppNames, const HealthSizes& sizes) {
    const InboundLinks inbound(host);
    if (inbound.unreadableFolder()) return {};
    auto linked = standardizedSet(links, &ApplicationsRootScan::Link::target);
    for (const fs::path& drive : drives)
        for (const fs::path& bundle : AppBundleEnumerator::bundles(drive, 0))
            if (inbound.leadTo(bundle)) linked.insert(Files::standardized(bundle));
    return OrphanedBundleDetector::detect(drives, linked, realAppNames, sizes);
}

/// Whether the repair of such a finding acts on a copy that may be on a drive.
bool hasCopyToMend(HealthIssue::Kind kind) {
    using enum HealthIssue::Kind;
    switch (kind) {
        case empty:
        case corrupted:
        case reverted:
        case orphan:
        case missingTrackedFiles:
        case unsafePrefsPlist:
        case sandboxExternalSymlink:
            return true;
        case healthy:
        case dangling:
        case missingSpotlightLaunchers:
        case brokenLauncher:
        case signatureBroken:
            return false;
    }
    return false;
}

HealthReport lookAtEverything(const Host& host, const std::vector<fs::path>& applicationRoots, const Options& options) {
    const HealthSizes sizes(host, options.sizes, options.cancellation);
    const SeenDrives drives(host);  // A drive that takes another one's place meanwhile was not there yet.
    HealthReport report;
    const auto [links, realAppNames] = ApplicationsRootScan::scan(applicationRoots);
    report.scannedSymlinks = links.size();
    report.scannedDrives = ExternalAppsRootsDiscovery::roots(host, options.extraDriveRoots);

    inspect(host, links, sizes, report);
    Issues& issues = report.issues;
    auto reverted = SSDRevertDetector::detect(host, report.scannedDrives, realAppNames, sizes);
    append(issues, std::move(reverted.issues));
    append(issues, missingLaunchers(host));
    append(issues, BrokenLauncherDetector::detect(host, SystemFolders::applications(host)));
    // Those tools are slow, and stay away from drives that are not there.
    append(issues, SignatureBrokenDetector::detect(host, cleanLinks(links, issues), options.cancellation));
    append(issues, UnsafePrefsPlistDetector::detect(host, {}));
    append(issues, SandboxExternalSymlinkDetector::detect(host));
    append(issues, DanglingDataLinkDetector::detect(host, options.cancellation));
    append(issues, ManifestRevertDetector::detect(host, standardizedSet(links, &ApplicationsRootScan::Link::location),
                                                  reverted.handledSources, sizes));
    append(issues, orphans(host, report.scannedDrives, links, realAppNames, sizes));
    for (HealthIssue& issue : issues)
        if (hasCopyToMend(issue.kind)) issue.drive = drives.of(issue.copy());
    report.scannedAt = host.now();
    return report;
}

/// A check on a thread of its own, of which nobody has to see the end.
class Attempt {
public:
    Attempt(const Host& host, const std::vector<fs::path>& applicationRoots, const Options& options) {
        if (options.cancellation.isCancelled()) cancel();
        Options own = options;
        own.cancellation = m_cancellation;
        std::packaged_task<HealthReport()> work(
            [host, applicationRoots, own] { return lookAtEverything(host, applicationRoots, own); });
        m_report = work.get_future();
        try {
            m_thread = std::thread(std::move(work));
        } catch (const std::system_error&) {
            // The system gives no thread: nobody can pass a wish on, and none can be left behind.
            std::promise<HealthReport> report;
            report.set_value(lookAtEverything(host, applicationRoots, options));
            m_report = report.get_future();
        }
    }
    ~Attempt() {
        cancel();
        if (m_thread.joinable()) hasEnded() ? m_thread.join() : m_thread.detach();
    }
    Attempt(const Attempt&) = delete;
    Attempt& operator=(const Attempt&) = delete;

    bool hasEnded(std::chrono::milliseconds limit = {}) const {
        return m_report.wait_for(limit) == std::future_status::ready;
    }
    void cancel() const { m_cancellation.cancel(); }
    HealthReport report() const { return m_report.get(); }

private:
    const Cancellation m_cancellation;
    std::shared_future<HealthReport> m_report;
    std::thread m_thread;
};

/// Waits for the attempt, as long as all volumes answer. @returns whether it has ended; if not, `host` knows of more
/// volumes that are silent.
bool waitFor(const Attempt& attempt, Host& host, const Cancellation& cancellation) {
    for (auto asked = std::chrono::steady_clock::now(); !attempt.hasEnded(glance);) {
        if (cancellation.isCancelled()) attempt.cancel();
        if (std::chrono::steady_clock::now() - asked < SilentVolumes::patience) continue;
        const std::size_t known = host.silentVolumes.size();
        host = SilentVolumes::noted(host);
        if (host.silentVolumes.size() > known) return attempt.hasEnded();
        asked = std::chrono::steady_clock::now();
    }
    return true;
}

}  // namespace

std::vector<fs::path> applicationRoots(const Host& host) {
    return {SystemFolders::applications(host)};
}

HealthReport run(const Host& host, const std::vector<fs::path>& applicationRoots, const Options& options) {
    // A thread that a dead volume holds cannot be ended: it is left to itself, and the check begins anew without that
    // volume.
    for (Host known = SilentVolumes::noted(host);;) {
        Attempt attempt(known, applicationRoots, options);
        if (waitFor(attempt, known, options.cancellation)) return attempt.report();
    }
}

}  // namespace tarvik::HealthCheck
