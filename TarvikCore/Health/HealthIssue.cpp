#include "Health/HealthIssue.h"

#include "Platform/Basics/FieldHash.h"

namespace tarvik::HealthIssueKind {

namespace {

using enum Severity;

struct Description {
    std::string_view rawValue;
    std::string_view title;
    Severity severity;
};

/// In the order of the kinds.
constexpr std::array<Description, HealthIssue::kindCount> descriptions = {{
    {"healthy", "Healthy", success},
    {"dangling", "Dangling symlinks", danger},
    {"empty", "Empty bundles", danger},
    {"corrupted", "Corrupted bundles", danger},
    {"reverted", "Reverted by auto-updater", warning},
    {"orphan", "Orphaned SSD bundles", warning},
    {"missingTrackedFiles", "Missing tracked files", warning},
    {"missingSpotlightLaunchers", "Missing Spotlight launchers", warning},
    {"brokenLauncher", "Broken launchers", danger},
    {"signatureBroken", "Broken code signatures", danger},
    {"unsafePrefsPlist", "Symlinked preference plists", danger},
    {"sandboxExternalSymlink", "Sandbox path symlinked externally", danger},
}};

const Description& of(HealthIssue::Kind kind) {
    return descriptions[static_cast<std::size_t>(kind)];
}

}  // namespace

std::string_view rawValue(HealthIssue::Kind kind) {
    return of(kind).rawValue;
}

std::string_view title(HealthIssue::Kind kind) {
    return of(kind).title;
}

Severity severity(HealthIssue::Kind kind) {
    return of(kind).severity;
}

const std::array<HealthIssue::Kind, HealthIssue::kindCount - 1>& sections() {
    using enum HealthIssue::Kind;
    static constexpr std::array<HealthIssue::Kind, HealthIssue::kindCount - 1> order = {
        dangling,         empty,    corrupted, brokenLauncher,      signatureBroken,          sandboxExternalSymlink,
        unsafePrefsPlist, reverted, orphan,    missingTrackedFiles, missingSpotlightLaunchers};
    return order;
}

}  // namespace tarvik::HealthIssueKind

std::size_t std::hash<tarvik::HealthIssue>::operator()(const tarvik::HealthIssue& issue) const noexcept {
    return tarvik::FieldHash::of(issue.kind, issue.location, issue.target, issue.detail, issue.sizeBytes, issue.drive);
}
