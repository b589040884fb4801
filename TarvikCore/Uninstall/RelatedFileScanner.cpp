#include "Uninstall/RelatedFileScanner.h"

#include "AppData/DataName.h"
#include "Applications/ExternalTarget.h"
#include "Platform/Basics/Parallel.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/StoredSpelling.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/SilentVolumes.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Storage/SizingService.h"
#include "Platform/Text/PropertyList.h"
#include "Uninstall/PackageReceipts.h"
#include "Uninstall/RelatedPlaces.h"
#include "Uninstall/UninstallRefusal.h"

#include <cstddef>
#include <functional>
#include <string>
#include <unordered_set>
#include <utility>

namespace tarvik::RelatedFileScanner {

namespace {

using RelatedPlaces::Place;

/// A candidate, and how it is measured.
struct Finding {
    UninstallCandidate candidate;
    Place::FileSize fileSize = Place::FileSize::onDisk;
};

/// Collects what is found: each path once, as the first one tells it.
class Findings {
public:
    void add(Finding finding) {
        UninstallCandidate& candidate = finding.candidate;
        if (!m_paths.insert(candidate.path.native()).second) return;
        if (candidate.category != UninstallCategory::receipts) candidate.seen = Files::info(candidate.path);
        all.push_back(std::move(finding));
    }

    std::vector<Finding> all;

private:
    std::unordered_set<std::string> m_paths;
};

/// Whether this program keeps its own records there: what has gone could never come back without them.
bool holdsRecords(const Host& host, const fs::path& path) {
    const fs::path records = AppStorageNames::supportRoot(host);
    return Files::isItemAtOrBelow(records, path) || Files::isItemAtOrBelow(path, records);
}

/// Links and launchers can name anything. What is offered must look like an application, must be one item however the
/// path is read, and may be none that the system needs where it is.
bool isCopyOfApplication(const Host& host, const AppRecord& app, const fs::path& target) {
    const auto resolved = Files::resolved(target);
    if (!resolved || target.extension() != ".app" || SystemFolders::isImmovable(host, StoredSpelling::of(*resolved)) ||
        holdsRecords(host, *resolved) || UninstallRefusal::of(host, target))
        return false;
    return Files::isSameItem(Files::info(target),
                             Files::info(app.bundlePath.parent_path() / app.externalTargetPath.value_or("")));
}

void addExecutables(Findings& findings, const Host& host, const AppRecord& app) {
    findings.add({{.path = app.bundlePath,
                   .category = UninstallCategory::executable,
                   .reason = app.isSymlink ? "App bundle symlink" : "App bundle",
                   .defaultSelected = true,
                   .isSymlink = app.isSymlink}});
    const auto target = ExternalTarget::of(app);
    if (target && !SilentVolumes::hold(host, *target) && isCopyOfApplication(host, app, *target))
        findings.add({{.path = *target,
                       .category = UninstallCategory::executable,
                       .reason = "External target app",
                       .seenIdentifier =
                           PropertyList::dictionaryAt(*target / "Contents/Info.plist").text("CFBundleIdentifier")}});
}

Finding foundAt(const fs::path& path, const Place& place) {
    return {{.path = path,
             .category = place.category,
             .confidence = place.confidence,
             .reason = place.reason,
             .defaultSelected = place.defaultSelected,
             .isPrivileged = place.isPrivileged},
            place.fileSize};
}

/// What leads to a volume that does not answer counts as away.
bool isThere(const Host& host, const fs::path& path) {
    return !SilentVolumes::hold(host, path) && Files::exists(path);
}

void addFrom(Findings& findings, const Host& host, const Place& place) {
    if (place.match == Place::Match::beginningOfName) {
        for (const std::string& name : Files::names(place.folder))
            if (name.starts_with(place.name) && isThere(host, place.folder / name))
                findings.add(foundAt(place.folder / name, place));
        return;
    }
    if (!isThere(host, place.folder / place.name)) return;
    if (holdsRecords(host, place.folder / place.name)) return;
    // Directly in the home stand also the Trash and what every program reads.
    if (place.folder == host.home && SystemFolders::isImmovable(host, place.folder / place.name)) return;
    // Where the volume folds names, the application finds its thing under another spelling too, and so does the user.
    const fs::path path = place.folder / StoredSpelling::nameIn(place.folder, place.name);
    if (place.folder == host.home && SystemFolders::isImmovable(host, path)) return;
    findings.add(foundAt(path, place));
}

/// In bytes.
std::int64_t sizeOf(const Host& host, const Finding& finding, const Cancellation& cancellation) {
    const fs::path& path = finding.candidate.path;
    if (SilentVolumes::hold(host, path)) return 0;
    if (finding.fileSize == Place::FileSize::length) {
        const auto item = Files::infoFollowingLinks(path);
        if (!item) return 0;
        if (item->type == Files::ItemType::regular) return item->size;
    }
    return SizingService::size(host, path, cancellation);
}

Findings findingsOnDisk(const Host& host, const AppRecord& app, const Cancellation& cancellation) {
    Findings findings;
    if (cancellation.isCancelled()) return findings;
    addExecutables(findings, host, app);
    for (const Place& place : RelatedPlaces::of(host, app)) {
        if (cancellation.isCancelled()) break;
        addFrom(findings, host, place);
    }
    return findings;
}

std::vector<UninstallCandidate> candidatesOf(std::vector<Finding> findings) {
    std::vector<UninstallCandidate> candidates;
    candidates.reserve(findings.size());
    for (Finding& finding : findings) candidates.push_back(std::move(finding.candidate));
    return candidates;
}

bool canHaveReceipts(const AppRecord& app) {
    return app.bundleIdentifier && DataName::isOneComponent(*app.bundleIdentifier);
}

/// Measures the findings side by side, if they are to be measured, and does `besides` meanwhile.
void measure(const Host& host, std::vector<Finding>& findings, Sizes sizes, const Cancellation& cancellation,
             const std::function<void()>& besides) {
    const std::size_t count = sizes == Sizes::measured ? findings.size() : 0;
    inParallel(count + 1, processorCount() + 1, [&](std::size_t index) {
        if (index == 0) return besides();
        Finding& finding = findings[index - 1];
        finding.candidate.sizeBytes = sizeOf(host, finding, cancellation);
    });
}

}  // namespace

std::vector<UninstallCandidate> onDisk(const Host& host, const AppRecord& app, Sizes sizes,
                                       const Cancellation& cancellation) {
    auto findings = findingsOnDisk(host, app, cancellation).all;
    measure(host, findings, sizes, cancellation, [] {});
    return candidatesOf(std::move(findings));
}

std::vector<UninstallCandidate> scan(const Host& host, const AppRecord& app, Sizes sizes,
                                     const Cancellation& cancellation) {
    Findings findings = findingsOnDisk(host, app, cancellation);
    std::vector<std::string> receipts;
    // What the tool is asked takes it longer than anything here but measuring.
    measure(host, findings.all, sizes, cancellation, [&] {
        if (canHaveReceipts(app)) receipts = PackageReceipts::named(host, *app.bundleIdentifier, cancellation);
    });
    for (const std::string& receipt : receipts)
        findings.add({{.path = receipt,
                       .category = UninstallCategory::receipts,
                       .confidence = UninstallConfidence::medium,
                       .reason = "pkgutil receipt for bundle id",
                       .isPrivileged = true}});
    return candidatesOf(std::move(findings.all));
}

}  // namespace tarvik::RelatedFileScanner
