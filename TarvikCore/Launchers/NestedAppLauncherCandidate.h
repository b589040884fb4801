#pragma once

#include "Platform/Basics/FieldHash.h"
#include "Platform/Basics/Path.h"

#include <cstddef>
#include <functional>

namespace tarvik {

/// An application in a linked folder, and the launcher that makes it visible.
struct NestedAppLauncherCandidate {
    /// The link among the applications.
    fs::path folderLink;
    /// What it leads to, standardized.
    fs::path folderTarget;
    /// The application as it is seen through the link.
    fs::path sourceApp;
    /// Where the application really is.
    fs::path targetApp;
    /// Where its launcher stands or is to stand.
    fs::path launcher;

    bool operator==(const NestedAppLauncherCandidate&) const = default;
};

}  // namespace tarvik

template <>
struct std::hash<tarvik::NestedAppLauncherCandidate> {
    std::size_t operator()(const tarvik::NestedAppLauncherCandidate& candidate) const noexcept {
        return tarvik::FieldHash::of(candidate.folderLink, candidate.folderTarget, candidate.sourceApp,
                                     candidate.targetApp, candidate.launcher);
    }
};
