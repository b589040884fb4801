#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Storage/SeenDrive.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tarvik {

/// One thing that the health check found. What is healthy is found too.
struct HealthIssue {
    enum class Kind {
        healthy,
        dangling,
        empty,
        corrupted,
        reverted,
        orphan,
        missingTrackedFiles,
        missingSpotlightLaunchers,
        brokenLauncher,
        signatureBroken,
        unsafePrefsPlist,
        sandboxExternalSymlink,
    };
    static constexpr std::size_t kindCount = 12;

    Kind kind = Kind::healthy;
    /// What the user sees: the link, the bundle on the internal disk, the launcher, the orphaned bundle.
    fs::path location;
    /// The other end: where a link points, the copy on a drive.
    std::optional<fs::path> target;
    /// A sentence for the user; empty for what is healthy.
    std::string detail;
    /// 0 where the kind is not measured.
    std::int64_t sizeBytes = 0;
    /// The volume that its copy was on, where a repair would act on that: it then acts there or nowhere. Nothing where
    /// nobody has looked.
    std::optional<SeenDrive> drive = std::nullopt;

    bool operator==(const HealthIssue&) const = default;

    /// The path of the copy that a repair would act on: of the target, or of the finding itself where it has none.
    fs::path copy() const { return target ? location.parent_path() / *target : location; }
};

/// How a finding is shown, in the window and by the command.
namespace HealthIssueKind {

enum class Severity { success, warning, danger };

/// The name by which programs know it, as "brokenLauncher". Pure.
std::string_view rawValue(HealthIssue::Kind kind);
/// The heading of its section. Pure.
std::string_view title(HealthIssue::Kind kind);
Severity severity(HealthIssue::Kind kind);
/// The kinds that have sections, in the order in which those are shown: what is worst comes first.
const std::array<HealthIssue::Kind, HealthIssue::kindCount - 1>& sections();

}  // namespace HealthIssueKind

}  // namespace tarvik

template <>
struct std::hash<tarvik::HealthIssue> {
    std::size_t operator()(const tarvik::HealthIssue& issue) const noexcept;
};
