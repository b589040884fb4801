#include "Launchers/NestedAppLauncherService.h"

#include "Applications/AppClassifier.h"
#include "Discovery/AppBundleEnumerator.h"
#include "Launchers/LauncherAppBuilder.h"
#include "Launchers/LauncherShimCleaner.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/ListedFolder.h"
#include "Platform/Machine/SilentVolumes.h"
#include "Platform/Machine/SystemFolders.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstddef>
#include <set>

namespace tarvik::NestedAppLauncherService {

namespace {

using Candidates = std::vector<NestedAppLauncherCandidate>;

constexpr int maxDepth = 1;

/// `folder` is standardized. A bundle needs no launcher for itself: its own link stands among the applications.
bool isFolderOfApplications(const Host& host, const fs::path& folder) {
    return folder.parent_path() == SystemFolders::applications(host) &&
           !AppBundleEnumerator::isBundleName(folder.filename().native());
}

/// Whether both paths lead to one item: a link can lead back to where it stands.
bool leadToOneItem(const fs::path& first, const fs::path& second) {
    return Files::isSameItem(Files::infoFollowingLinks(first), Files::infoFollowingLinks(second));
}

Candidates candidatesOf(const Host& host, const fs::path& applicationRoot, const fs::path& folderLink,
                        const fs::path& folderTarget) {
    Candidates candidates;
    if (SilentVolumes::hold(host, folderTarget)) return candidates;
    for (const fs::path& app : AppBundleEnumerator::bundles(folderTarget, maxDepth)) {
        const fs::path launcher = applicationRoot / app.filename();
        if (SilentVolumes::hold(host, launcher) || !leadToOneItem(app, launcher))
            candidates.push_back({folderLink, folderTarget, folderLink / app.filename(), app, launcher});
    }
    return candidates;
}

Candidates symlinkedAppFolderCandidates(const Host& host, const fs::path& applicationRoot) {
    Candidates candidates;
    const auto folder = ListedFolder::at(applicationRoot);
    if (!folder) return candidates;
    for (std::size_t index = 0; index < folder->size(); ++index) {
        const fs::path link = applicationRoot / folder->name(index);
        if (AppBundleEnumerator::isBundleName(folder->name(index))) continue;
        const auto text = Files::linkText(link);
        if (!text) continue;
        const auto found = candidatesOf(host, applicationRoot, link, Files::standardized(applicationRoot / *text));
        candidates.insert(candidates.end(), found.begin(), found.end());
    }
    return candidates;
}

bool needsLauncher(const Host& host, const NestedAppLauncherCandidate& candidate) {
    if (SilentVolumes::hold(host, candidate.launcher)) return false;  // A link stands there.
    if (const auto target = AppClassifier::readLauncherTarget(candidate.launcher))
        return target->native() != candidate.targetApp.native();
    return !Files::itemExists(candidate.launcher);
}

/// The candidates that need their launcher. Of several with one name only the first does, and none when it opens one of
/// them.
Candidates needingOf(const Host& host, const Candidates& candidates) {
    std::set<fs::path> settled;
    for (const auto& candidate : candidates)
        if (!needsLauncher(host, candidate)) settled.insert(candidate.launcher);
    Candidates needing;
    for (const auto& candidate : candidates)
        if (settled.insert(candidate.launcher).second) needing.push_back(candidate);
    return needing;
}

void installLauncher(const Host& host, const NestedAppLauncherCandidate& candidate,
                     const InstallerRunReporter& reporter) {
    if (!needsLauncher(host, candidate)) return;  // An application was installed there meanwhile.
    LauncherAppBuilder::install(host, candidate.targetApp, candidate.launcher, candidate.targetApp, reporter);
}

/// Whether the last `depth` components of the path lead from the root to an application through real folders.
bool standsBelow(const fs::path& root, const fs::path& target, int depth) {
    fs::path folder = target;
    for (int level = 0; level < depth; ++level) folder = folder.parent_path();
    fs::path place = root;
    for (const fs::path& component : target.lexically_relative(folder)) {
        place /= component;
        if (Files::isSymbolicLink(place) || !Files::isFolder(place)) return false;
    }
    return !leadToOneItem(place, target);
}

std::int64_t install(const Host& host, const Candidates& candidates, const InstallerRunReporter& reporter) {
    std::int64_t installed = 0;
    for (const auto& candidate : candidates) {
        try {
            installLauncher(host, candidate, reporter);
            ++installed;
        } catch (const Failure& failure) {
            reporter.log(
                fmt::format("launcher-repair-failed\t{}\t{}", candidate.launcher.native(), failure.description()));
        }
    }
    return installed;
}

}  // namespace

void installLaunchers(const Host& host, const fs::path& source, const fs::path& destination,
                      const InstallerRunReporter& reporter) noexcept {
    ignoringFailure([&] {
        const fs::path link = Files::standardized(source);
        if (!isFolderOfApplications(host, link)) return;
        const auto candidates = candidatesOf(host, link.parent_path(), link, Files::standardized(destination));
        for (const auto& candidate : needingOf(host, candidates))
            ignoringFailure([&] { installLauncher(host, candidate, reporter); });
    });
}

void removeLaunchers(const Host& host, const fs::path& source, const fs::path& destination) noexcept {
    ignoringFailure([&] {
        const fs::path folder = Files::standardized(source);
        if (!isFolderOfApplications(host, folder)) return;
        for (const fs::path& app : AppBundleEnumerator::bundles(folder, maxDepth))
            LauncherShimCleaner::cleanupShims(host, destination / app.lexically_relative(folder));
    });
}

Candidates missingCandidates(const Host& host, const fs::path& applicationRoot) {
    return needingOf(host, symlinkedAppFolderCandidates(host, applicationRoot));
}

bool hasComeBack(const Host& host, const fs::path& applicationRoot, const fs::path& target) {
    bool isBack = false;
    for (int depth = 2; depth <= maxDepth + 2; ++depth) isBack = isBack || standsBelow(applicationRoot, target, depth);
    if (!isBack) return false;
    const Candidates linked = symlinkedAppFolderCandidates(host, applicationRoot);
    return std::none_of(linked.begin(), linked.end(),
                        [&](const NestedAppLauncherCandidate& candidate) { return candidate.targetApp == target; });
}

std::int64_t installMissingLaunchers(const Host& host, const fs::path& applicationRoot,
                                     const InstallerRunReporter& reporter) {
    return install(host, missingCandidates(host, applicationRoot), reporter);
}

std::int64_t installMissingLaunchers(const Host& host, const fs::path& folderLink, const fs::path& applicationRoot,
                                     const InstallerRunReporter& reporter) {
    const fs::path link = Files::standardized(folderLink);
    Candidates candidates = missingCandidates(host, applicationRoot);
    std::erase_if(candidates, [&](const NestedAppLauncherCandidate& candidate) {
        return Files::standardized(candidate.folderLink) != link;
    });
    return install(host, candidates, reporter);
}

std::string detail(const Candidates& candidates) {
    constexpr std::size_t mostNames = 4;
    std::vector<std::string> names;
    for (const auto& candidate : candidates)
        if (names.size() < mostNames) names.push_back(candidate.launcher.filename());
    std::string text = fmt::format("Nested apps need top-level launchers for Spotlight: {}", fmt::join(names, ", "));
    if (candidates.size() > mostNames) text += fmt::format(" (+{} more)", candidates.size() - mostNames);
    return text;
}

}  // namespace tarvik::NestedAppLauncherService
