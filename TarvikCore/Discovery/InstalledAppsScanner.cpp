#include "Discovery/InstalledAppsScanner.h"

#include "AppData/Slug.h"
#include "AppData/SupplementalInstall.h"
#include "Applications/AppClassifier.h"
#include "Applications/AppFlags.h"
#include "Applications/ExternalTarget.h"
#include "Discovery/AppBundleEnumerator.h"
#include "Discovery/AppBundleScanRoots.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Text/PropertyList.h"
#include "Platform/Text/Text.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

namespace tarvik::InstalledAppsScanner {

namespace {

constexpr int supplementalMaxDepth = 4;
constexpr auto recently = std::chrono::hours(24) * 365;

/// By the bundle path as text, so that results are the same on every run.
using Records = std::map<std::string, AppRecord>;

std::optional<std::string> nonEmptyText(const PropertyList& plist, std::string_view key) {
    auto text = plist.text(key);
    return text && !text->empty() ? text : std::nullopt;
}

std::optional<std::string> nameIn(const PropertyList& plist) {
    const auto displayName = nonEmptyText(plist, "CFBundleDisplayName");
    return displayName ? displayName : nonEmptyText(plist, "CFBundleName");
}

AppRecord build(const Host& host, const fs::path& bundle) {
    const PropertyList plist = PropertyList::dictionaryAt(bundle / "Contents/Info.plist");
    const auto link = Files::linkText(bundle);
    const auto classification = AppClassifier::classify(host, bundle, plist, link.has_value(), link);
    AppRecord record{.id = bundle.native(),
                     .bundlePath = bundle,
                     .displayName = preferredDisplayName(nameIn(plist), bundle.stem().native()),
                     .bundleIdentifier = plist.text("CFBundleIdentifier"),
                     .version = plist.text("CFBundleShortVersionString"),
                     .executableName = plist.text("CFBundleExecutable"),
                     .developer = AppClassifier::developer(plist),
                     .kind = classification.kind,
                     .isSymlink = link.has_value(),
                     .symlinkTarget = link,
                     .isMacAppStore = AppFlags::isMacAppStore(bundle),
                     .hasLoginItems = AppFlags::hasLoginItems(bundle),
                     .hasSystemExtension = AppFlags::hasSystemExtension(bundle),
                     .isTarvikLauncher = classification.isTarvikLauncher,
                     .externalTargetPath = classification.externalTargetPath,
                     .modifiedAt = Files::modifiedAt(bundle)};
    if (SupplementalInstall::matches(host, bundle)) record.displayName = Slug::supplementalDisplayName(record);
    return record;
}

void addBundlesBelow(const Host& host, const fs::path& root, int maxDepth, Records& records) {
    for (const fs::path& bundle : AppBundleEnumerator::bundles(root, maxDepth))
        if (!records.contains(bundle.native())) records.emplace(bundle.native(), build(host, bundle));
}

/// Adds the bundles behind links and launchers. Where these lead in turn is not followed.
void mergeExternalTargets(const Host& host, Records& records) {
    std::vector<fs::path> targets;
    for (const auto& [path, record] : records)
        if (auto target = ExternalTarget::of(record)) targets.push_back(std::move(*target));
    for (const fs::path& target : targets)
        if (!records.contains(target.native()) && Files::itemExists(target))
            records.emplace(target.native(), build(host, target));
}

bool isNamedLikeItsFile(const AppRecord& record) {
    return record.displayName == record.bundlePath.stem().native();
}

}  // namespace

std::vector<fs::path> scanRoots(const Host& host) {
    return AppBundleScanRoots::standardApplicationRoots(host, true);
}

std::vector<fs::path> supplementalAppSupportRoots(const Host& host) {
    return AppBundleScanRoots::supplementalApplicationSupportRoots(host, supplementalMaxDepth);
}

std::vector<AppRecord> discover(const Host& host) {
    Records found;
    for (const fs::path& root : scanRoots(host))
        addBundlesBelow(host, root, AppBundleEnumerator::defaultMaxDepth, found);
    for (const fs::path& root : supplementalAppSupportRoots(host))
        addBundlesBelow(host, root, supplementalMaxDepth, found);
    mergeExternalTargets(host, found);

    std::vector<AppRecord> records;
    records.reserve(found.size());
    for (auto& [path, record] : found) records.push_back(std::move(record));
    records = dedupedByBundleId(std::move(records), SystemFolders::applications(host), host.now());
    std::sort(records.begin(), records.end(), [](const AppRecord& left, const AppRecord& right) {
        const int order = Text::localizedCompare(left.displayName, right.displayName);
        return order != 0 ? order < 0 : left.id < right.id;
    });
    return records;
}

std::optional<AppRecord> inspect(const Host& host, const fs::path& bundle) {
    const fs::path path = Files::standardized(bundle);
    return Files::itemExists(path) ? std::optional(build(host, path)) : std::nullopt;
}

std::string preferredDisplayName(const std::optional<std::string>& plistName, const std::string& folderName) {
    if (!plistName || plistName->empty()) return folderName;
    std::string plist = Text::trimmed(*plistName);
    std::string folder = Text::trimmed(folderName);
    const bool differByMoreThanCase = Text::caseFolded(plist) != Text::caseFolded(folder);
    const bool isLonger = Text::characterCount(plist) > Text::characterCount(folder);
    return differByMoreThanCase && isLonger ? plist : folder;
}

int canonicalScore(const AppRecord& record, const fs::path& applications, std::chrono::system_clock::time_point now) {
    int score = 0;
    if (!record.isTarvikLauncher) score += 8;
    if (!record.isSymlink) score += 4;
    if (record.bundlePath.native().starts_with(applications.native() + "/")) score += 2;
    if (record.bundleSizeBytes > 0) score += 1;
    if (isNamedLikeItsFile(record)) score += 2;
    if (record.modifiedAt && *record.modifiedAt > now - recently) score += 1;
    return score;
}

std::vector<AppRecord> dedupedByBundleId(std::vector<AppRecord> records, const fs::path& applications,
                                         std::chrono::system_clock::time_point now) {
    struct Candidate {
        AppRecord record;
        int score;
    };
    std::vector<AppRecord> kept;
    std::map<std::string, Candidate> best;
    for (AppRecord& record : records) {
        if (record.bundleIdentifier.value_or("").empty()) {
            kept.push_back(std::move(record));
            continue;
        }
        const int score = canonicalScore(record, applications, now);
        const auto [place, isFirst] = best.try_emplace(*record.bundleIdentifier, Candidate{record, score});
        if (!isFirst && score > place->second.score) place->second = {std::move(record), score};
    }
    for (auto& [identifier, candidate] : best) kept.push_back(std::move(candidate.record));
    return kept;
}

}  // namespace tarvik::InstalledAppsScanner
