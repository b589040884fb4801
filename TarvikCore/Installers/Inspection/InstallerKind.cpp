#include "Installers/Inspection/InstallerKind.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tarvik {

namespace {

/// In declared order.
constexpr std::array<std::string_view, 7> installerKindTexts = {"app",  "dmg",    "zip",    "pkg",
                                                                "mpkg", "script", "unknown"};

}  // namespace

std::string_view textOf(InstallerKind kind) {
    return installerKindTexts.at(static_cast<std::size_t>(kind));
}

std::optional<InstallerKind> installerKindOf(std::string_view text) {
    const auto* const found = std::find(installerKindTexts.begin(), installerKindTexts.end(), text);
    if (found == installerKindTexts.end()) return std::nullopt;
    return static_cast<InstallerKind>(found - installerKindTexts.begin());
}

}  // namespace tarvik
